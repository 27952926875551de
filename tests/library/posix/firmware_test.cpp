#include <sys/stat.h>

#include "firmware/update.h"
#include "firmware_files.h"

namespace {

struct FirmwareOnPosix : testing::Test, FirmwareFolder {
    void run(const std::string& command) const {
        ASSERT_EQ(std::system(("cd '" + path("") + "' && " + command + " 2> messages").c_str()), 0)
            << command << ": " << read("messages");
    }
};

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
        firmware::SRecordJob job;
        const std::string file = path("records");
        EXPECT_EQ(firmware::prepareUpdateImage(file.c_str(), job), 0);
        EXPECT_EQ(FirmwareRead(job).image, Bytes(expected.begin(), expected.end()));
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
