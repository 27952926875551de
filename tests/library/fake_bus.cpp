#include "fake_bus.h"

#include <algorithm>
#include <cstring>

#include "common/device_change.h"

namespace {

FakeBus* theBus = nullptr;

constexpr uint64_t none = ~uint64_t{0};

void append(Bytes& bytes, uint32_t value, int count) {
    for (int i = 0; i < count; ++i) bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

CommandId commandOf(const Bytes& request) {
    return {request[0], request[1]};
}

Bytes answer(uint8_t kind, uint8_t error, uint8_t group, uint8_t detail, uint8_t status, const Bytes& payload) {
    Bytes bytes{kind, error, group, detail, 0, 0, 0, status};
    append(bytes, static_cast<uint32_t>(payload.size()), 2);
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}

}  // namespace

bool isRequest(const Bytes& piece) {
    if (piece.size() == 16 && piece[2] == 'Z') return true;
    return piece.size() >= 4 && piece.size() == 4u + piece[2] + 0x100u * piece[3];
}

Bytes normalAnswer(const Bytes& payload, uint8_t statusCode) {
    return answer(1, 0, 0, 0, statusCode, payload);
}

Bytes errorAnswer(uint8_t errorCode, uint8_t group, uint8_t detail) {
    return answer(2, errorCode, group, detail, 0, {});
}

Bytes statusPayload(uint8_t jobNumber, uint8_t firstFlag, uint8_t secondFlag) {
    Bytes payload = countingBytes(48, 0x80);
    payload[24] = jobNumber;
    payload[32] = firstFlag;
    payload[39] = secondFlag;
    return payload;
}

Bytes mediaPayload(const std::vector<Media>& table) {
    Bytes payload{static_cast<uint8_t>(table.size())};
    for (const Media& media : table) {
        append(payload, media.code, 1);
        append(payload, media.width, 4);
        append(payload, media.length, 4);
        append(payload, 0x5A5B, 2);
        append(payload, media.longestLength, 4);
        append(payload, media.sectionWidth, 4);
        for (const uint16_t length : media.sectionLengths) append(payload, length, 2);
        append(payload, 0xEE, 1);
    }
    return payload;
}

void FakeDevice::answer(CommandId command, Answerer answerer) {
    std::lock_guard lock(mutex_);
    answerers_[command] = std::move(answerer);
}

void FakeDevice::answer(CommandId command, const Bytes& bytes) {
    answer(command, [bytes](const Bytes&) { return bytes; });
}

void FakeDevice::answerOnce(CommandId command, const Bytes& bytes) {
    std::lock_guard lock(mutex_);
    once_[command].push_back(bytes);
}

std::vector<Bytes> FakeDevice::pieces(size_t count) {
    std::unique_lock lock(mutex_);
    arrived_.wait_for(lock, std::chrono::seconds(20), [&] { return pieces_.size() >= count; });
    return pieces_;
}

void FakeDevice::forgetPieces() {
    std::lock_guard lock(mutex_);
    pieces_.clear();
}

size_t FakeDevice::countRequests(CommandId command) {
    return static_cast<size_t>(std::ranges::count_if(
        pieces(), [&](const Bytes& piece) { return isRequest(piece) && commandOf(piece) == command; }));
}

void FakeDevice::unplug() {
    present = false;
    open_ = false;
    for (const Connection& connection : connections_) {
        connection.requests.hangUp();
        connection.answers.hangUp();
    }
}

FakeDevice::Connection::Connection(FakeDevice& device)
    : thread([this, &device] {
          while (const auto piece = requests.receive()) {
              const auto bytes = device.answerTo(*piece);
              if (bytes && !answers.send(*bytes)) break;
          }
      }) {}

FakeDevice::Connection::~Connection() {
    requests.closeWriter();
    answers.closeReader();
    thread.join();
}

const char* FakeDevice::closePipe(uint64_t end) {
    for (auto connection = connections_.begin(); connection != connections_.end(); ++connection) {
        auto& [requests, answers, thread] = *connection;
        const bool writes = end == requests.writer;
        if (!writes && end != answers.reader) continue;
        writes ? requests.closeWriter() : answers.closeReader();
        if (requests.writer == none && answers.reader == none) connections_.erase(connection);
        return writes ? "write" : "read";
    }
    return nullptr;
}

std::optional<Bytes> FakeDevice::answerTo(const Bytes& piece) {
    std::unique_lock lock(mutex_);
    pieces_.push_back(piece);
    arrived_.notify_all();
    if (!isRequest(piece)) return std::nullopt;
    if (auto& once = once_[commandOf(piece)]; !once.empty()) {
        const Bytes bytes = once.front();
        once.pop_front();
        return bytes;
    }
    const Answerer answerer = answerers_[commandOf(piece)];
    lock.unlock();
    return answerer ? answerer(piece) : normalAnswer({});
}

FakeBus::FakeBus(size_t printers) {
    theBus = this;
    fakeControlInstall(&functions);
    for (size_t number = 0; number < printers; ++number) add(printerPath(number));
}

FakeDevice& FakeBus::add(const std::string& path) {
    FakeDevice& device = *devices_.emplace_back(std::make_unique<FakeDevice>(path, devices_.size()));
    device.answer(getStatus, normalAnswer(statusPayload()));
    device.answer(getMediaInfo, normalAnswer(mediaPayload({{0xF1, 15240, 10160}})));
    device.answer(getErrorLog, normalAnswer(countingBytes(70, 0x10)));
    device.answer(getMaintenanceData, normalAnswer(countingBytes(38, 0x20)));
    device.answer(getUniqueString, normalAnswer(countingBytes(30, 'A')));
    device.answer(getFirmwareInfo,
                  [](const Bytes& request) { return normalAnswer(countingBytes(38, request[4])); });
    device.answer(getEeprom,
                  [](const Bytes& request) { return normalAnswer(countingBytes(request[5], request[4])); });
    return device;
}

std::vector<std::string> FakeBus::calls() {
    std::lock_guard lock(mutex_);
    return calls_;
}

size_t FakeBus::countCalls(const std::string& start) {
    return static_cast<size_t>(
        std::ranges::count_if(calls(), [&](const std::string& call) { return call.starts_with(start); }));
}

bool FakeBus::isClosedOnAChange(size_t deviceNumber, size_t times) {
    const std::string call = "Close " + std::to_string(deviceNumber);
    for (int wait = 0; wait < 20'000 && countCalls(call) < times; ++wait) {
        control::notifyDeviceChange();
        platform::sleepMilliseconds(1);
    }
    return countCalls(call) == times;
}

std::string FakeBus::printerPath(size_t number) {
    return pathStart + "-" + std::to_string(number);
}

FakeDevice* FakeBus::at(uint32_t deviceNumber) {
    return deviceNumber < devices_.size() ? devices_[deviceNumber].get() : nullptr;
}

FakeDevice& FakeBus::find(uint64_t handle) {
    return **std::ranges::find_if(devices_, [&](const auto& device) { return device->handle == handle; });
}

void FakeBus::log(const std::string& call) {
    std::lock_guard lock(mutex_);
    calls_.push_back(call);
}

const FakeControlFunctions FakeBus::functions{
    .open =
        [](uint32_t deviceNumber) {
            FakeDevice* device = theBus->at(deviceNumber);
            if (device == nullptr || !device->present) return none;
            theBus->log("Open " + std::to_string(deviceNumber));
            device->open_ = true;
            device->connections_.emplace_back(*device);
            return device->handle;
        },
    .close =
        [](uint64_t handle) {
            theBus->log("Close " + std::to_string(handle));
            theBus->find(handle).open_ = false;
        },
    .getDeviceName =
        [](uint64_t handle, char* name) {
            std::strcpy(name, theBus->find(handle).path.c_str());
            return uint32_t{1};
        },
    .getPipeHandle =
        [](uint64_t handle, uint8_t pipeNumber) {
            const FakeDevice& device = theBus->find(handle);
            if (device.failPipes) return none;
            const auto& connection = device.connections_.back();
            return pipeNumber == 0 ? connection.requests.writer : connection.answers.reader;
        },
    .closePipe =
        [](uint64_t pipe) {
            for (size_t number = 0; number < theBus->devices_.size(); ++number) {
                const char* kind = theBus->devices_[number]->closePipe(pipe);
                if (kind != nullptr)
                    return theBus->log(std::string("ClosePipe ") + kind + " " + std::to_string(number));
            }
            theBus->log("ClosePipe unknown");
        },
    .checkDeviceName =
        [](uint32_t deviceNumber) {
            const FakeDevice* device = theBus->at(deviceNumber);
            return device != nullptr && device->open_ ? device->handle : none;
        },
    .checkDevice = [](uint64_t handle) { return uint32_t{theBus->find(handle).present}; },
};
