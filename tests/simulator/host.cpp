#include "host.h"

#include <random>

namespace test {

namespace fs = std::filesystem;

const Json smallMedia = {{{"code", 0xF1}, {"width", 1016}, {"length", 508}},
                         {{"code", 0x10},
                          {"width", 1016},
                          {"maximumLength", 8000},
                          {"sectionWidth", 508},
                          {"sectionLengths", {254, 508}}}};

Host::Host(uint32_t deviceNumber) : device_(SDKUsb_Open(deviceNumber)) {
    if (device_ == none) return;
    readPipe_ = SDKUsb_GetPipeHandle(device_, 0, 1, 0);
    writePipe_ = SDKUsb_GetPipeHandle(device_, 0, 0, 0);
}

void Host::close() {
    if (device_ == none) return;
    SDKUsb_Close(device_);
    SDKUsb_ClosePipe(writePipe_);
    SDKUsb_ClosePipe(readPipe_);
    device_ = none;
}

bool Host::send(const Bytes& bytes) const {
    uint32_t written = 0;
    return platform::writePipe(writePipe_, bytes.data(), static_cast<uint32_t>(bytes.size()), written);
}

Bytes Host::receive() const {
    Bytes answer(512);
    uint32_t count = 0;
    if (!platform::readPipe(readPipe_, answer.data(), static_cast<uint32_t>(answer.size()), count)) count = 0;
    answer.resize(count);
    return answer;
}

SimulatorTest::SimulatorTest() {
    std::random_device random;
    folder = fs::temp_directory_path() / u8"zprusb-größe" / std::to_string(random()) / u8"фото";
    configure();
}

SimulatorTest::~SimulatorTest() {
    std::error_code ignored;
    fs::remove_all(folder.parent_path(), ignored);
}

void SimulatorTest::configure(Json configuration) {
    const std::u8string path = folder.u8string();
    configuration["output"] = std::string(path.begin(), path.end());
    if (!configuration.contains("dataTimeoutSeconds")) configuration["dataTimeoutSeconds"] = 30;
    char error[ZPRUSBSIM_ERROR_SIZE] = "";
    ASSERT_EQ(zprusbsim_configure(configuration.dump().c_str(), error, sizeof error), 1u) << error;
}

Bytes printRequest(uint8_t jobNumber, uint8_t copies) {
    return {0x01, 0x40, 14, 0, jobNumber, copies, 0, 0xF8, 0x03, 0xFC, 0x01, 0xF1, 0x01, 0, 200, 0, 0x2C, 0x01};
}

Bytes acknowledgement(uint8_t statusNumber) {
    return {1, 0, 0, 0, 0, 0, 0, statusNumber, 0, 0};
}

Bytes refusal(uint8_t errorNumber, uint8_t group, uint8_t detail, uint8_t statusNumber) {
    return {2, errorNumber, group, detail, 0, 0, 0, statusNumber, 0, 0};
}

Bytes pattern(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(i * 7 + i / 360 * 13);
    return bytes;
}

Bytes concatenate(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

}  // namespace test
