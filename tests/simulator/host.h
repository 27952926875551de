/// The host's side of a simulated printer: it opens the device and writes and reads plain bytes.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "control_library.h"
#include "platform/pipe.h"
#include "zprusb_simulator.h"

namespace test {

using Bytes = std::vector<uint8_t>;
using Json = nlohmann::json;

constexpr uint64_t none = ~uint64_t{0};

class Host {
public:
    explicit Host(uint32_t deviceNumber = 0);
    ~Host() { close(); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    void close();
    bool isPresent() const { return SDKUsb_CheckDevice(device_) == 1; }

    bool send(const Bytes& bytes) const;

    /// One read; empty when it fails.
    Bytes receive() const;

    Bytes ask(const Bytes& request) const { return send(request) ? receive() : Bytes(); }

private:
    uint64_t device_;
    uint64_t writePipe_ = none;
    uint64_t readPipe_ = none;
    platform::BrokenPipeGuard guard_;
};

/// A folder of its own for the pages, in a folder whose name is no plain ASCII.
class SimulatorTest : public testing::Test {
protected:
    SimulatorTest();
    ~SimulatorTest() override;

    /// Makes printers that print into the folder and, unless told otherwise, wait longer for data than even a
    /// slow machine takes to send them.
    void configure(Json configuration = Json::object());

    std::filesystem::path folder;
};

/// Small pages: F1 has 120 x 60 dots, 10 is as wide and of variable length, with sections of 60 x 30 and 60
/// x 60.
extern const Json smallMedia;
constexpr size_t smallPageSize = 120 * 60 * 3;

/// The 14 bytes of payload and the header before them, for one small page.
Bytes printRequest(uint8_t jobNumber, uint8_t copies = 1);

/// An answer without payload.
Bytes acknowledgement(uint8_t statusNumber = 0);
Bytes refusal(uint8_t errorNumber, uint8_t group = 0, uint8_t detail = 0, uint8_t statusNumber = 0);

/// Pixels that differ from row to row and from column to column.
Bytes pattern(size_t size);

Bytes concatenate(Bytes first, const Bytes& second);

}  // namespace test
