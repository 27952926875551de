#include "firmware_files.h"

#include <numeric>

#include "api/internal.h"
#include "calls.h"
#include "firmware/update.h"
#include "open_printer.h"

using firmware::SRecordJob;

std::string record(char type, uint32_t address, const Bytes& data, int countError, int checksumError) {
    const unsigned addressBytes = type == '3' || type == '7' ? 4 : type == '2' || type == '8' ? 3 : 2;
    Bytes fields{static_cast<uint8_t>(static_cast<int>(addressBytes + data.size() + 1) + countError)};
    for (unsigned i = addressBytes; i-- > 0;) fields.push_back(static_cast<uint8_t>(address >> 8 * i));
    fields.insert(fields.end(), data.begin(), data.end());
    fields.push_back(static_cast<uint8_t>(~std::accumulate(fields.begin(), fields.end(), 0) + checksumError));
    std::string text{'S', type};
    char digits[3];
    for (const uint8_t byte : fields)
        text.append(digits, size_t(std::snprintf(digits, sizeof digits, "%02X", byte)));
    return text;
}

namespace {

struct FirmwareFile : testing::Test, FirmwareFolder {};

/// Reads 8 bytes from address 0x1000 on, where no record is 0xEE.
SRecordJob eightBytes(const std::string& path) {
    return {.inputPath = path.c_str(),
            .startAddress = 0x1000,
            .endAddress = 0x1007,
            .fillByte = 0xEE,
            .readBufferSize = 64};
}

const Bytes counting = countingBytes(4, 1);
const std::string four = "S107100001020304DE", atTheEnd = record('3', 0x1006, {8, 9});

}  // namespace

TEST_F(FirmwareFile, isTakenOrRefusedRecordByRecord) {
    constexpr uint8_t none = 0xEE;
    const struct {
        std::string text;
        uint16_t code;
        Bytes image{};
    } cases[] = {
        {four, 0, {1, 2, 3, 4, none, none, none, none}},
        {"any text\r\n;s1" + four + "\r\nmore\n" + atTheEnd, 0, {1, 2, 3, 4, none, none, 8, 9}},
        {"S1071000aAbBcCdDDA", 0, {0xAA, 0xBB, 0xCC, 0xDD, none, none, none, none}},
        {"S107100001020g0\xFFzDF", ZPRUSB_BAD_CHECKSUM},
        {"S1061000010:\xFF"
         "2E6",
         0,
         {1, 0, 2, none, none, none, none, none}},
        {record('2', 0x1001, counting) + record('1', 0x1002, {7}), 0, {none, 1, 7, 3, 4, none, none, none}},
        {record('0', 0xFFFF, countingBytes(252, 0)) + four, 0, {1, 2, 3, 4, none, none, none, none}},
        {"S503S11" + four, 0, {1, 2, 3, 4, none, none, none, none}},
        {"S504S107" + atTheEnd + "S500", 0, {none, none, none, none, none, none, 8, 9}},
        {"S5", ZPRUSB_FILE_FAILED},
        {"S5041", ZPRUSB_FILE_FAILED},
        {record('9', 0x1000, {}) + record('8', 1, {}) + record('7', 1, {}) + atTheEnd,
         0,
         {none, none, none, none, none, none, 8, 9}},
        {record('9', 0, {1}), ZPRUSB_NOT_S_RECORDS},
        {"S9 3", ZPRUSB_NOT_S_RECORDS},
        {record('9', 0, {}, 0, 1), ZPRUSB_BAD_CHECKSUM},
        {record('0', 0, counting, 0, 1), ZPRUSB_BAD_CHECKSUM},
        {record('1', 0x1000, counting, 0, -1), ZPRUSB_BAD_CHECKSUM},
        {record('0', 0, {}, -1), ZPRUSB_NOT_S_RECORDS},
        {record('1', 0x1000, {}, -1), ZPRUSB_NOT_S_RECORDS},
        {record('2', 0x1000, {}, -1), ZPRUSB_NOT_S_RECORDS},
        {record('3', 0x1000, {}, -1), ZPRUSB_NOT_S_RECORDS},
        {four + "S4", ZPRUSB_NOT_S_RECORDS},
        {"S604", ZPRUSB_NOT_S_RECORDS},
        {"S/", ZPRUSB_NOT_S_RECORDS},
        {"S:", ZPRUSB_NOT_S_RECORDS},
        {"S\xB1", ZPRUSB_NOT_S_RECORDS},
        {"", ZPRUSB_NOT_S_RECORDS},
        {"no record", ZPRUSB_NOT_S_RECORDS},
        {record('1', 0x0FFF, counting), ZPRUSB_BAD_ADDRESS},
        {record('1', 0x1008, {}), ZPRUSB_BAD_ADDRESS},
        {record('1', 0x1005, counting), ZPRUSB_BAD_ADDRESS},
        {record('1', 0x1008, {1}, 0, 1), ZPRUSB_BAD_ADDRESS},
        {record('1', 0x1008, counting).substr(0, 8), ZPRUSB_BAD_ADDRESS},
        {record('1', 0x1007, {}), 0, Bytes(8, none)},
    };
    for (const auto& [text, code, image] : cases) {
        SCOPED_TRACE(testing::PrintToString(text));
        const FirmwareRead read(eightBytes(write(text)));
        EXPECT_EQ(read.code, code);
        EXPECT_EQ(read.image, image);
    }
}

TEST_F(FirmwareFile, isSummedInEachWay) {
    const std::string path = write(record('3', 0x1002, {0xFF, 0xFE}) + four + record('1', 0x1001, {}));
    SRecordJob job = eightBytes(path);
    const std::string image = this->path("image"), trailer = this->path("trailer");
    job.imagePath = image.c_str();
    job.trailerPath = trailer.c_str();
    job.endAddress = 0x1004;  // the fill byte is the odd last one
    job.sizeLimit = 4;
    for (const auto& [mode, checksum] : {std::pair(0u, 77u), {1u, 0xFFFE0408u}, {2u, 0xFFFE0606u}, {3u, 0u}}) {
        job.wordChecksumMode = mode;
        job.imageWordChecksum = 77;
        const FirmwareRead read(job);
        EXPECT_EQ(read.code, 0);
        EXPECT_EQ(read.job.imageWordChecksum, checksum);
        EXPECT_EQ(read.job.imageByteSum, 10u + 0xEE);
        EXPECT_EQ(read.job.dataByteSum, 10u + 0xFF + 0xFE);
        EXPECT_EQ(read.job.lowestAddress, 0x1000u);
        EXPECT_EQ(read.job.highestAddress, 0x1003u);
        EXPECT_EQ(read.job.sizeExceeded, 0u);
        EXPECT_EQ(this->read("image"), "\1\2\3\4\xEE");
        EXPECT_EQ(this->read("trailer"),
                  (std::string{0, 0x10, 0, 0, 3, 0x10, 0, 0, '\xF8', 0, 0, 0, 5, 0, 0, 0}));
    }
    job.sizeLimit = 3;
    EXPECT_EQ(FirmwareRead(job).job.sizeExceeded, 1u);
    job.scanOnly = 1;
    job.startAddress = 0xFFFFFFFF;
    const FirmwareRead scan(job);
    EXPECT_EQ(scan.code, 0);
    EXPECT_EQ(scan.job.imageLength + scan.job.imageByteSum, 0u);
    EXPECT_EQ(scan.job.dataByteSum, 10u + 0xFF + 0xFE);
}

TEST_F(FirmwareFile, isTheSameThroughAnyBufferAndNeverHalfRead) {
    const std::string records[] = {record('0', 0, {'x'}), four, atTheEnd, "S502ab", record('9', 0x1000, {})};
    std::string text;
    std::vector<bool> whole{true};  // whether a record ends before each place or none has begun
    for (const std::string& line : records) {
        text += line + "\r\n";
        whole.resize(text.size() - 1, false);
        for (int end = 0; end < 2; ++end) whole.push_back(true);
        whole[text.size() - 2] = true;
    }
    for (const uint32_t capacity : {0u, 1u, 7u, 0x40000u}) {
        for (size_t length = 0; length <= text.size(); ++length) {
            SCOPED_TRACE(testing::Message() << length << " bytes through a buffer of " << capacity);
            const std::string path = write(text.substr(0, length)), image = this->path("image");
            SRecordJob job = eightBytes(path);
            job.imagePath = image.c_str();
            job.readBufferSize = capacity;
            const FirmwareRead read(job);
            EXPECT_EQ(read.code, length == 0     ? ZPRUSB_NOT_S_RECORDS
                                 : whole[length] ? ZPRUSB_SUCCESS
                                                 : ZPRUSB_FILE_FAILED);
            EXPECT_EQ(this->read("image"), std::string(read.image.begin(), read.image.end()));
        }
        EXPECT_EQ(FirmwareRead(eightBytes(path())).image, (Bytes{1, 2, 3, 4, 0xEE, 0xEE, 8, 9}));
    }
}

TEST_F(FirmwareFile, hasToStayTheSameBetweenBothReads) {
    const std::string all = record('1', 0x1000, counting) + atTheEnd;
    const std::pair<std::string, uint16_t> cases[] = {
        {all + "S500", 0},
        {record('1', 0x1001, counting) + atTheEnd, ZPRUSB_BAD_ADDRESS},
        {record('1', 0x1000, counting) + record('1', 0x1006, {17}), ZPRUSB_BAD_ADDRESS},
        {record('1', 0x1000, counting) + record('1', 0x1006, {8, 10}), ZPRUSB_BAD_ADDRESS},
        {all + record('1', 0x1008, {1}), ZPRUSB_BAD_ADDRESS},
        {all.substr(0, all.size() - 1), ZPRUSB_FILE_FAILED},
    };
    for (const auto& [changed, code] : cases) {
        SRecordJob job;
        const std::string path = write(all);
        EXPECT_EQ(firmware::prepareUpdateImage(path.c_str(), job), 0);
        write(changed);
        EXPECT_EQ(firmware::readUpdateImage(job), code) << changed;
        EXPECT_EQ(job.image != nullptr, code == 0) << changed;
        firmware::freeUpdateImage(job.image);
    }
}

TEST_F(FirmwareFile, isAFileThatCanBeRead) {
    const std::string folder = path("folder"), missing = path("missing"), image = path("missing/image");
    std::filesystem::create_directory(folder);
    for (const std::string& bad : {folder, missing, std::string()})
        EXPECT_EQ(FirmwareRead(eightBytes(bad)).code, ZPRUSB_FILE_FAILED) << bad;
    const std::string good = write(four);
    SRecordJob job = eightBytes(good);
    job.imagePath = image.c_str();
    EXPECT_EQ(FirmwareRead(job).code, ZPRUSB_FILE_FAILED);
    std::swap(job.imagePath, job.trailerPath);
    EXPECT_EQ(FirmwareRead(job).code, ZPRUSB_FILE_FAILED);
}

namespace {

struct FirmwareUpdate : OpenPrinters<2>, FirmwareFolder {
    /// @return the start address, or the code of a failure.
    uint32_t load(const std::string& text) {
        uint32_t length = 1, sum = 1, start = 1, end = 1;
        uint16_t code = 1;
        const std::string path = write(text);
        uint8_t* image = zprusb_loadUpdateImage(path.c_str(), &length, &sum, &start, &end, &code);
        EXPECT_EQ(image != nullptr, code == 0);
        if (code == ZPRUSB_NO_OBJECT) length = sum = 0;
        EXPECT_EQ(length, image != nullptr ? end - start + 1 : 0);
        EXPECT_EQ(sum, image != nullptr ? std::accumulate(image, image + length, 0u) : 0);
        zprusb_freeUpdateImage(image);
        return image != nullptr ? start : code;
    }

    static uint16_t send(uint32_t wanted, uint32_t sent) {
        static const Bytes image = countingBytes(20000, 0x55);
        const uint16_t code = codeOf(zprusb_writeUpdateData, image.data(), &wanted);
        EXPECT_EQ(wanted, sent);
        return code;
    }
};

}  // namespace

TEST_F(FirmwareUpdate, needsAnObjectThatIsOpenForIt) {
    EXPECT_EQ(load(four), uint32_t{ZPRUSB_NO_OBJECT});
    EXPECT_EQ(codeOf(zprusb_checkUpdateTarget), ZPRUSB_NO_OBJECT);
    EXPECT_EQ(codeOf(zprusb_startUpdate, uint8_t{1}, 2u, 3u), ZPRUSB_NO_OBJECT);
    EXPECT_EQ(send(5, 0), ZPRUSB_NO_OBJECT);
    EXPECT_EQ(codeOf(zprusb_openForUpdate, 0u), ZPRUSB_SUCCESS);
    EXPECT_EQ(codeOf(zprusb_checkUpdateTarget), ZPRUSB_SUCCESS);
    EXPECT_EQ(codeOf(zprusb_writeUpdateData, counting.data(), nullptr), ZPRUSB_BAD_ARGUMENT);
    uint32_t length = 5;
    EXPECT_EQ(codeOf(zprusb_writeUpdateData, nullptr, &length), ZPRUSB_BAD_ARGUMENT);
    EXPECT_EQ(length, 0u);
}

TEST_F(FirmwareUpdate, takesNoMoreThan512KiBOfMemory) {
    EXPECT_EQ(codeOf(zprusb_openForUpdate, 0u), 0);
    const std::pair<std::string, uint32_t> cases[] = {
        {record('3', 0x90000, {1}) + record('3', 0x10FFFF, {2}), 0x90000},
        {record('3', 0x90000, {1}) + record('3', 0x110000, {2}), ZPRUSB_BAD_ADDRESS},
        {record('3', 0, {1}) + record('3', 0xFFFFFFFF, {2}), ZPRUSB_BAD_ADDRESS},
        {record('3', 0xFFFFFFFE, counting), ZPRUSB_BAD_ADDRESS},
        {record('3', 0xFFFFFFFE, {1, 2}), 0xFFFFFFFE},
        {four + record('1', 0x1003, {}), 0x1000},
        {four + record('1', 0x1004, {}), ZPRUSB_BAD_ADDRESS},
        {record('1', 0x1005, {}), ZPRUSB_BAD_ADDRESS},
        {record('9', 0, {}), ZPRUSB_BAD_ADDRESS},
        {"", ZPRUSB_NOT_S_RECORDS}};
    for (const auto& [text, result] : cases) EXPECT_EQ(load(text), result) << text;
    uint16_t code = 0;
    EXPECT_EQ(zprusb_loadUpdateImage(nullptr, nullptr, nullptr, nullptr, nullptr, &code), nullptr);
    EXPECT_EQ(code, ZPRUSB_BAD_ARGUMENT);
}

TEST_F(FirmwareUpdate, sendsTheImageOnFromWhereItWas) {
    EXPECT_EQ(codeOf(zprusb_openForUpdate, 0u), 0);
    bus[0].forgetPieces();
    const auto start = [] { return codeOf(zprusb_startUpdate, uint8_t{3}, 0x0A0B0C0Du, 20000u); };
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(send(5000, 5000) + send(0, 0) + send(4096, 4096), 0);
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(send(1, 1), 0);
    EXPECT_EQ(send(0xFFFFFFFF, 0), ZPRUSB_COMMUNICATION) << "more than can be counted";
    const Bytes request{4, 0xC0, 9, 0, 3, 0x0D, 0x0C, 0x0B, 0x0A, 0x20, 0x4E, 0, 0};
    EXPECT_EQ(bus[0].pieces(6), (std::vector<Bytes>{request,
                                                    countingBytes(4096, 0x55),
                                                    countingBytes(904, 0x55),
                                                    countingBytes(4096, 0x55 + 5000 % 256),
                                                    request,
                                                    {0x55}}));

    bus[0].answerOnce({4, 0xC0}, errorAnswer(1));
    EXPECT_EQ(start(), ZPRUSB_UPDATE_REFUSED);
    bus[0].unplug();
    EXPECT_EQ(start(), ZPRUSB_UPDATE_REFUSED);
    EXPECT_EQ(send(5000, 0), ZPRUSB_COMMUNICATION);
    EXPECT_EQ(zprusb_selectPrinter(1, nullptr), 1u);
    EXPECT_EQ(send(3, 3), 0);  // the object's place in the image, whatever the printer
    EXPECT_EQ(bus[1].pieces(1).back(), countingBytes(3, 0x55));
}

TEST_F(FirmwareUpdate, mayBeOpenedAndSentByThreadsThatShareAnObject) {
    const auto sendOneChunk = [] {
        while (codeOf(zprusb_checkUpdateTarget) != ZPRUSB_SUCCESS) continue;
        EXPECT_EQ(send(4096, 4096), 0);
    };
    std::jthread first(sendOneChunk), second(sendOneChunk);
    EXPECT_EQ(codeOf(zprusb_openForUpdate, 0u), ZPRUSB_SUCCESS);
    first.join();
    second.join();
    EXPECT_EQ(send(3, 3), 0);
    EXPECT_EQ(bus[0].pieces(3).back(), countingBytes(3, 0x55 + 2 * 4096 % 256));
}
