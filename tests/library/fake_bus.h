/// Scripted printers behind the fake control library.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "fake_control_library.h"
#include "platform/thread.h"
#include "support/system.h"

/// A command's two identifier bytes.
using CommandId = std::pair<uint8_t, uint8_t>;
constexpr CommandId getStatus{0x01, 0x00}, getMediaInfo{0x02, 0x00}, getErrorLog{0x04, 0x00},
    getFirmwareInfo{0x03, 0xC0}, getEeprom{0x05, 0xC0}, getMaintenanceData{0x09, 0xC0},
    getUniqueString{0x03, 0x80}, maintenancePermission{0x02, 0x80}, print{0x01, 0x40}, printLong{0x02, 0x40};

/// Whether a piece is a request, not data.
bool isRequest(const Bytes& piece);

Bytes normalAnswer(const Bytes& payload, uint8_t statusCode = 0);
Bytes errorAnswer(uint8_t errorCode, uint8_t group = 0, uint8_t detail = 0);

/// 48 bytes of status with the given job number and flags.
Bytes statusPayload(uint8_t jobNumber = 7, uint8_t firstFlag = 0, uint8_t secondFlag = 0);

struct Media {
    uint8_t code = 0;
    uint32_t width = 0, length = 0, longestLength = 0, sectionWidth = 0;
    uint16_t sectionLengths[5] = {};
};
Bytes mediaPayload(const std::vector<Media>& table);

/// What the printer does with one request: answer with bytes, or nothing at all.
using Answerer = std::function<std::optional<Bytes>(const Bytes& request)>;

class FakeDevice {
public:
    FakeDevice(std::string devicePath, uint64_t number) : path(std::move(devicePath)), handle(number) {}

    /// Answers a command from now on.
    void answer(CommandId command, Answerer answerer);
    void answer(CommandId command, const Bytes& bytes);
    /// Answers a command once, before what else is set for it.
    void answerOnce(CommandId command, const Bytes& bytes);

    /// Every piece that the library wrote, in order; waits until `count` have arrived. What was answered has.
    std::vector<Bytes> pieces(size_t count = 0);
    void forgetPieces();
    size_t countRequests(CommandId command);

    /// Ends the pipes: the library's reads and writes fail from now on.
    void unplug();
    void plugIn() { present = true; }

    std::string path;
    uint64_t handle;
    std::atomic<bool> present = true;
    bool failPipes = false;

private:
    friend class FakeBus;

    /// The two pipes of one opening. It lasts until the library has closed both, though the device be closed
    /// and opened again before.
    struct Connection {
        explicit Connection(FakeDevice& device);
        ~Connection();

        test::Pipe requests{true}, answers{true};
        std::thread thread;
    };
    /// Returns the kind of the pipe, or null if it is none of this device.
    const char* closePipe(uint64_t end);
    std::optional<Bytes> answerTo(const Bytes& piece);

    bool open_ = false;
    std::mutex mutex_;  // guards the next four
    std::condition_variable arrived_;
    std::vector<Bytes> pieces_;
    std::map<CommandId, Answerer> answerers_;
    std::map<CommandId, std::deque<Bytes>> once_;
    std::list<Connection> connections_;
};

/// The devices of the process; installs itself as the control library. One exists at a time.
class FakeBus {
public:
    /// So many ready printers, and nothing else.
    explicit FakeBus(size_t printers = 1);

    FakeDevice& operator[](size_t deviceNumber) { return *devices_[deviceNumber]; }
    FakeDevice& add(const std::string& path);

    /// The calls of the control library that change something, such as "Open 0" or "ClosePipe write 0".
    std::vector<std::string> calls();
    size_t countCalls(const std::string& start);

    /// Whether the library, which is told of changes until then, has closed a device so often in a test's time.
    bool isClosedOnAChange(size_t deviceNumber, size_t times);

    static std::string printerPath(size_t number);

    /// What all paths start with. It differs from run to run: printers of the same path are reserved by the
    /// same mutex, whatever process they are in.
    static inline std::string pathStart =
        "\\\\?\\usb#vid_5a2c&pid_0012#test" + std::to_string(platform::currentThreadId());

private:
    static const FakeControlFunctions functions;
    FakeDevice* at(uint32_t deviceNumber);
    FakeDevice& find(uint64_t handle);
    void log(const std::string& call);

    std::vector<std::unique_ptr<FakeDevice>> devices_;
    std::mutex mutex_;  // guards calls_
    std::vector<std::string> calls_;
};
