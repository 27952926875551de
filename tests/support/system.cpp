#include "support/system.h"

#include <chrono>
#include <thread>
#include <utility>

namespace test {

namespace {

void closeOnce(platform::PipeHandle& end) {
    if (end != platform::noPipe) closePipeEnd(std::exchange(end, platform::noPipe));
}

}  // namespace

bool resourcesFallTo(unsigned count) {
    constexpr unsigned systemsOwn = 2;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (resourceCount() > count + systemsOwn) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

Pipe::~Pipe() {
    closeReader();
    closeWriter();
}

void Pipe::closeReader() {
    closeOnce(reader);
}

void Pipe::closeWriter() {
    closeOnce(writer);
}

std::optional<Bytes> Pipe::receive(size_t capacity) const {
    Bytes piece(capacity);
    uint32_t count = 0;
    if (!platform::readPipe(reader, piece.data(), static_cast<uint32_t>(capacity), count) || count == 0)
        return std::nullopt;
    piece.resize(count);
    return piece;
}

Bytes Pipe::receiveAll() const {
    Bytes all;
    while (const auto piece = receive(1000)) all.insert(all.end(), piece->begin(), piece->end());
    return all;
}

bool Pipe::send(const Bytes& bytes) const {
    const platform::BrokenPipeGuard guard;
    uint32_t written = 0;
    return platform::writePipe(writer, bytes.data(), static_cast<uint32_t>(bytes.size()), written);
}

ChildProcess::~ChildProcess() {
    if (process_ != 0) kill();
}

std::string ChildProcess::readLine() {
    std::string line;
    for (auto letter = output_.receive(1); letter && letter->front() != '\n'; letter = output_.receive(1))
        if (letter->front() != '\r') line += static_cast<char>(letter->front());
    return line;
}

std::string ChildProcess::readAll() {
    const Bytes bytes = output_.receiveAll();
    std::string text(bytes.begin(), bytes.end());
    std::erase(text, '\r');
    return text;
}

}  // namespace test
