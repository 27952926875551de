/// The host's side of a simulated printer: it opens the device and writes and reads plain bytes.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "common/control_library.h"
#include "platform/pipe.h"
#include "support/bytes.h"
#include "zprusb_simulator.h"

namespace test {

using Json = nlohmann::json;

constexpr uint64_t none = ~uint64_t{0};
constexpr uint32_t patience = 100'000;  // ms
inline const Bytes getStatus{0x01, 0x00, 0, 0};

inline Bytes concatenate(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

inline Bytes changed(Bytes bytes, std::initializer_list<std::pair<size_t, uint8_t>> values) {
    for (const auto& [offset, value] : values) bytes[offset] = value;
    return bytes;
}

/// Pixels that differ from row to row and from column to column.
inline Bytes pattern(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(i * 7 + i / 360 * 13);
    return bytes;
}

inline Bytes success(const Bytes& payload = {}, uint8_t statusNumber = 0) {
    const auto size = static_cast<uint8_t>(payload.size());
    return concatenate({1, 0, 0, 0, 0, 0, 0, statusNumber, size, 0}, payload);
}

inline Bytes refusal(uint8_t errorNumber, uint8_t group = 0, uint8_t detail = 0, uint8_t statusNumber = 0) {
    return {2, errorNumber, group, detail, 0, 0, 0, statusNumber, 0, 0};
}

/// Small pages: F1 has 120 x 60 dots, 10 is as wide and of variable length, with sections of 60 x 30 and 60
/// x 60.
inline const Json smallMedia = {{{"code", 0xF1}, {"width", 1016}, {"length", 508}},
                                {{"code", 0x10},
                                 {"width", 1016},
                                 {"maximumLength", 8000},
                                 {"sectionWidth", 508},
                                 {"sectionLengths", {254, 508}}}};
constexpr size_t smallPageSize = 120 * 60 * 3;

/// For one small page.
inline Bytes printRequest(uint8_t jobNumber, uint8_t copies = 1) {
    return {0x01, 0x40, 14, 0, jobNumber, copies, 0, 0xF8, 0x03, 0xFC, 0x01, 0xF1, 0x01, 0, 200, 0, 0x2C, 0x01};
}

class Host {
public:
    explicit Host(uint32_t deviceNumber = 0) : device_(SDKUsb_Open(deviceNumber)) {
        readPipe_ = SDKUsb_GetPipeHandle(device_, 0, 1, 0);
        writePipe_ = SDKUsb_GetPipeHandle(device_, 0, 0, 0);
    }
    ~Host() { close(); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    void close() {
        if (device_ == none) return;
        SDKUsb_Close(device_);
        SDKUsb_ClosePipe(writePipe_);
        SDKUsb_ClosePipe(readPipe_);
        device_ = none;
    }

    bool isPresent() const { return SDKUsb_CheckDevice(device_) == 1; }

    bool send(const Bytes& bytes) const {
        uint32_t written = 0;
        return platform::writePipe(writePipe_, bytes.data(), static_cast<uint32_t>(bytes.size()), written);
    }

    /// One read; empty when it fails.
    Bytes receive() const {
        Bytes answer(512);
        uint32_t count = 0;
        platform::readPipe(readPipe_, answer.data(), static_cast<uint32_t>(answer.size()), count);
        answer.resize(count);
        return answer;
    }

    Bytes ask(const Bytes& request) const { return send(request) ? receive() : Bytes(); }

    /// A request, which has to succeed, and the data that belong to it.
    void transfer(const Bytes& request, const Bytes& data = pattern(smallPageSize)) const {
        ASSERT_EQ(ask(request), success());
        EXPECT_TRUE(send(data));
    }

private:
    uint64_t device_;
    uint64_t writePipe_ = none;
    uint64_t readPipe_ = none;
    platform::BrokenPipeGuard guard_;
};

/// Printers of small pages, which print into a folder of their own in one whose name is no plain ASCII.
class SimulatorTest : public testing::Test {
protected:
    SimulatorTest() { configure(); }

    ~SimulatorTest() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder.parent_path(), ignored);
    }

    /// Makes the printers anew; unless told otherwise, they wait longer for data than even a slow machine takes
    /// to send them.
    void configure(Json printers = Json::array({Json::object()}), double dataTimeoutSeconds = 30) {
        for (Json& printer : printers) printer.emplace("media", smallMedia);
        const std::u8string path = folder.u8string();
        const Json configuration{{"output", std::string(path.begin(), path.end())},
                                 {"dataTimeoutSeconds", dataTimeoutSeconds},
                                 {"printers", printers}};
        char error[ZPRUSBSIM_ERROR_SIZE] = "";
        ASSERT_EQ(zprusbsim_configure(configuration.dump().c_str(), error, sizeof error), 1u) << error;
    }

    void addFault(const Json& fault) {
        char error[ZPRUSBSIM_ERROR_SIZE] = "";
        ASSERT_EQ(zprusbsim_addFault(fault.dump().c_str(), error, sizeof error), 1u) << error;
    }

    static Json state() {
        char json[4096] = "";
        zprusbsim_state(0, json, sizeof json);
        return Json::parse(json);
    }

    std::filesystem::path folder = std::filesystem::temp_directory_path() / u8"zprusb-größe" /
                                   std::to_string(std::random_device()()) / u8"фото";
};

}  // namespace test
