#include "fake_bus.h"

#include <algorithm>

#include "fake_control_library.h"

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

void FakeDevice::sayNothingTo(CommandId command) {
    answer(command, [](const Bytes&) { return std::nullopt; });
}

void FakeDevice::answerOnce(CommandId command, std::optional<Bytes> bytes) {
    std::lock_guard lock(mutex_);
    once_[command].push_back(std::move(bytes));
}

std::vector<Bytes> FakeDevice::pieces(size_t count) {
    std::unique_lock lock(mutex_);
    arrived_.wait_for(lock, std::chrono::seconds(20), [&] { return pieces_.size() >= count; });
    return pieces_;
}

std::vector<Bytes> FakeDevice::pieces() {
    return pieces(0);
}

void FakeDevice::forgetPieces() {
    std::lock_guard lock(mutex_);
    pieces_.clear();
}

size_t FakeDevice::countRequests(CommandId command) {
    const auto all = pieces();
    return static_cast<size_t>(std::count_if(all.begin(), all.end(), [&](const Bytes& piece) {
        return isRequest(piece) && commandOf(piece) == command;
    }));
}

FakeDevice::~FakeDevice() {
    for (Connection& connection : connections_) {
        for (const uint64_t end : connection.libraryEnds) {
            if (end != none) closeEnd(end);
        }
        endConnection(connection);
    }
}

void FakeDevice::open() {
    const FakePipe requests = makeRequestPipe();
    const FakePipe answers = makeAnswerPipe();
    open_ = true;
    connections_.push_back(
        {{requests.libraryEnd, answers.libraryEnd}, {requests.testEnd, answers.testEnd}, {}});
    connections_.back().thread = std::thread([=, this] { run(requests.testEnd, answers.testEnd); });
}

bool FakeDevice::closePipe(uint64_t end, int& pipeNumber) {
    for (auto connection = connections_.begin(); connection != connections_.end(); ++connection) {
        auto& ends = connection->libraryEnds;
        if (ends[0] != end && ends[1] != end) continue;
        pipeNumber = ends[0] == end ? 0 : 1;
        closeEnd(end);
        ends[pipeNumber] = none;
        if (ends[1 - pipeNumber] == none) {
            endConnection(*connection);
            connections_.erase(connection);
        }
        return true;
    }
    return false;
}

void FakeDevice::endConnection(Connection& connection) {
    connection.thread.join();
    for (const uint64_t end : connection.testEnds) closeEnd(end);
}

void FakeDevice::unplug() {
    present = false;
    for (const Connection& connection : connections_) {
        for (const uint64_t end : connection.testEnds) hangUp(end);
    }
}

void FakeDevice::run(uint64_t requests, uint64_t answers) {
    while (const auto piece = receivePiece(requests)) {
        const auto bytes = answerTo(*piece);
        if (bytes && !sendBytes(answers, *bytes)) break;
    }
}

std::optional<Bytes> FakeDevice::answerTo(const Bytes& piece) {
    Answerer answerer;
    {
        std::lock_guard lock(mutex_);
        pieces_.push_back(piece);
        arrived_.notify_all();
        if (!isRequest(piece)) return std::nullopt;
        auto& once = once_[commandOf(piece)];
        if (!once.empty()) {
            const auto bytes = once.front();
            once.pop_front();
            return bytes;
        }
        answerer = answerers_[commandOf(piece)];
    }
    return answerer ? answerer(piece) : normalAnswer({});
}

std::string FakeBus::printerPath(size_t number) {
    return pathStart + "-" + std::to_string(number);
}

FakeBus::FakeBus(size_t printers) {
    theBus = this;
    static const FakeControlFunctions functions{open,      close,           getDeviceName, getPipeHandle,
                                                closePipe, checkDeviceName, checkDevice};
    fakeControlInstall(&functions);
    for (size_t number = 0; number < printers; ++number) add(printerPath(number));
}

FakeBus::~FakeBus() {
    theBus = nullptr;
}

FakeDevice& FakeBus::add(const std::string& path) {
    devices_.push_back(std::make_unique<FakeDevice>(path));
    FakeDevice& device = *devices_.back();
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
    const auto all = calls();
    return static_cast<size_t>(std::count_if(all.begin(), all.end(),
                                             [&](const std::string& call) { return call.starts_with(start); }));
}

void FakeBus::log(const std::string& call) {
    std::lock_guard lock(mutex_);
    calls_.push_back(call);
}

uint64_t FakeBus::handleOf(size_t deviceNumber) const {
    return devices_[deviceNumber]->handle.value_or(deviceNumber);
}

FakeDevice* FakeBus::find(uint64_t handle) {
    for (size_t number = 0; number < devices_.size(); ++number) {
        if (handleOf(number) == handle) return devices_[number].get();
    }
    return nullptr;
}

uint64_t FakeBus::open(uint32_t deviceNumber) {
    if (deviceNumber >= theBus->devices_.size() || !theBus->devices_[deviceNumber]->present) return none;
    theBus->log("Open " + std::to_string(deviceNumber));
    theBus->devices_[deviceNumber]->open();
    return theBus->handleOf(deviceNumber);
}

void FakeBus::close(uint64_t handle) {
    theBus->log("Close " + std::to_string(handle));
    if (FakeDevice* device = theBus->find(handle)) device->open_ = false;
}

uint32_t FakeBus::getDeviceName(uint64_t handle, char* name) {
    const FakeDevice* device = theBus->find(handle);
    if (device == nullptr) return 0;
    std::copy(device->path.begin(), device->path.end(), name);
    name[device->path.size()] = '\0';
    return 1;
}

uint64_t FakeBus::getPipeHandle(uint64_t handle, uint8_t pipeNumber) {
    const FakeDevice* device = theBus->find(handle);
    if (device == nullptr || pipeNumber > 1 || device->failPipes) return none;
    return device->connections_.back().libraryEnds[pipeNumber];
}

void FakeBus::closePipe(uint64_t pipe) {
    for (size_t number = 0; number < theBus->devices_.size(); ++number) {
        int pipeNumber = 0;
        if (!theBus->devices_[number]->closePipe(pipe, pipeNumber)) continue;
        theBus->log((pipeNumber == 0 ? "ClosePipe write " : "ClosePipe read ") + std::to_string(number));
        return;
    }
    theBus->log("ClosePipe unknown");
}

uint64_t FakeBus::checkDeviceName(uint32_t deviceNumber) {
    if (deviceNumber >= theBus->devices_.size() || !theBus->devices_[deviceNumber]->open_) return none;
    return theBus->handleOf(deviceNumber);
}

uint32_t FakeBus::checkDevice(uint64_t handle) {
    const FakeDevice* device = theBus->find(handle);
    return device != nullptr && device->present;
}
