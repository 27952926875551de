#include <sys/stat.h>

#include <algorithm>
#include <random>
#include <sstream>

#include "firmware/update.h"
#include "firmware_files.h"

namespace {

struct FirmwareOnPosix : testing::Test, FirmwareFolder {
    void run(const std::string& command) const {
        ASSERT_EQ(std::system(("cd '" + path("") + "' && " + command + " 2> messages").c_str()), 0)
            << command << ": " << read("messages");
    }

    Bytes load(const std::string& name) const {
        firmware::SRecordJob job;
        const std::string file = path(name);
        EXPECT_EQ(firmware::prepareUpdateImage(file.c_str(), job), 0);
        return FirmwareRead(job).image;
    }
};

std::string shuffledWithCarriageReturns(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line.substr(0, line.find('\r')) + "\r\n");
    std::ranges::shuffle(lines, std::mt19937(1));
    std::string shuffled;
    for (const std::string& line : lines) shuffled += line;
    return shuffled;
}

}  // namespace

TEST_F(FirmwareOnPosix, isReadAsOtherConvertersReadIt) {
    // The test program's first 60000 bytes stand for a firmware.
    run("head -c 60000 /proc/" + std::to_string(platform::currentProcessId()) + "/exe > program");
    const std::string toRecords = "objcopy -I binary -O srec program records --srec-len=",
                      srecCat = "srec_cat program -binary ";
    const std::string makers[] = {
        toRecords + "16",
        toRecords + "255 --change-addresses 0x12345",
        toRecords + "7 --srec-forceS3",
        toRecords + "33 --srec-forceS3 --change-addresses 0xFFFF0000",
        srecCat + "-offset 0x900 -o records -motorola -address-length=4",
        srecCat + "-crop 5 100 200 40001 50000 60000 -o records -motorola -address-length=3 -line-length=40",
        srecCat + "-crop 0 0x1000 0x7003 0xE000 -o records -motorola -address-length=2 -obs=1",
    };
    for (const std::string& maker : makers) {
        SCOPED_TRACE(maker);
        run(maker);
        run("objcopy -I srec -O binary --gap-fill 0xFF records expected");
        const std::string expected = read("expected");
        EXPECT_GT(expected.size(), 50000u);
        run("srec_cat records -fill 0xFF -over records -o filled -motorola && objcopy -I srec -O binary filled "
            "again");
        EXPECT_EQ(read("again"), expected);
        const Bytes image = load("records");
        EXPECT_TRUE(
            std::ranges::equal(image, expected, {}, {}, [](char c) { return static_cast<uint8_t>(c); }));
        write(shuffledWithCarriageReturns(read("records")));
        EXPECT_EQ(load("firmware"), image);
    }
}

TEST_F(FirmwareOnPosix, isARegularFileOfLessThan4GiB) {
    const std::string fifo = path("fifo"), large = write("S9030000FC");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    std::filesystem::resize_file(large, (uint64_t{1} << 32) + 10);
    for (const std::string& file : {fifo, large, std::string("/dev/zero"), std::string("/dev/null")}) {
        firmware::SRecordJob job;
        EXPECT_EQ(firmware::prepareUpdateImage(file.c_str(), job), ZPRUSB_FILE_FAILED) << file;
    }
}
