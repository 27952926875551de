#include "trace/trace.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "device/device_table.h"
#include "platform/file.h"
#include "platform/thread.h"
#include "trace/command_names.h"

namespace trace {

namespace {

constexpr const char* base = "c:\\bin\\ZprUsbLog";
constexpr size_t nameSize = 260;

int processId() {
    return static_cast<int>(platform::currentProcessId());
}

int threadId() {
    return static_cast<int>(platform::currentThreadId());
}

/// A trace file that is open for one entry, if it can be opened.
class TraceFile {
public:
    /// The calling thread's.
    TraceFile() {
        char name[nameSize];
        std::snprintf(name, sizeof name, "%s-%d-%d.txt", base, threadId(), processId());
        open(name);
    }
    /// The one of all threads and processes.
    struct Shared {};
    explicit TraceFile(Shared) {
        char name[nameSize];
        std::snprintf(name, sizeof name, "%s-ThreadDevice.txt", base);
        open(name);
    }
    ~TraceFile() {
        if (file_ != nullptr) std::fclose(file_);
    }
    TraceFile(const TraceFile&) = delete;
    TraceFile& operator=(const TraceFile&) = delete;

    bool isNew() const { return isNew_; }

    [[gnu::format(printf, 2, 3)]] void write(const char* format, ...) {
        if (file_ == nullptr) return;
        std::va_list arguments;
        va_start(arguments, format);
        std::vfprintf(file_, format, arguments);
        va_end(arguments);
    }

    void writeTime() {
        const platform::LocalTime t = traceTimestamp();
        write("[%04d/%02d/%02d %02d:%02d:%02d.%03d  ", t.year, t.month, t.day, t.hour, t.minute, t.second,
              t.millisecond);
    }

    void writeHandle(platform::PipeHandle handle) { write("%X", static_cast<unsigned>(handle)); }

    void writeBytes(const uint8_t* bytes, uint32_t length) {
        for (uint32_t i = 0; i < length; ++i) write("%02X ", bytes[i]);
    }

private:
    void open(const char* name) {
        isNew_ = !platform::fileExists(name);
        file_ = platform::appendToFile(name);
    }

    bool isNew_ = false;
    std::FILE* file_ = nullptr;
};

void writeIdentification(TraceFile& file) {
    if (!file.isNew()) return;
    file.write("Process ID = %d\n", processId());
    file.write("Thread ID  = %d\n", threadId());
}

void writeEvent(TraceFile& file, int kind, int lastKind, const char* name, uint32_t value, uint16_t result) {
    writeIdentification(file);
    if (kind < 0 || kind > lastKind) return;
    const auto number = static_cast<int>(value);
    file.writeTime();
    if (kind == 0) file.write("< %s > ] \n", name);
    if (kind == 1) file.write("< %s > result = %d ] \n", name, result);
    if (kind == 2) file.write("< %s > size = %d result = %d ] \n", name, number, result);
    if (kind == 3) file.write("< %s > data = %d ] \n", name, number);
}

platform::PipeHandle pipeOfDevice(int32_t number, bool reading) {
    if (number < 0 || number >= static_cast<int32_t>(device::deviceCount)) return platform::noPipe;
    const device::DeviceEntry& entry = device::deviceTable[static_cast<uint32_t>(number)];
    return reading ? entry.readPipe : entry.writePipe;
}

const char* nameOfCommand(const uint8_t* frame) {
    const auto* row =
        std::find_if(std::begin(commandNames), std::end(commandNames), [&](const CommandName& candidate) {
            return candidate.commandNo == frame[0] && candidate.commandClass == frame[1];
        });
    return row != std::end(commandNames) ? row->name : "";
}

}  // namespace

void traceConnectHandle(int kind, int32_t deviceIndex) {
    constexpr int reading = 1, writing = 2;
    TraceFile file;
    if (kind == reading || kind == writing) {
        file.writeTime();
        file.write("< Connect %s Handle > ] \n", kind == reading ? "Read" : "Write");
        file.writeHandle(pipeOfDevice(deviceIndex, kind == reading));
    }
    file.write("\n");
}

void traceApiCall(int kind, const char* name, uint32_t value, uint16_t result) {
    TraceFile file;
    writeEvent(file, kind, 3, name, value, result);
}

void traceThreadDevice(int kind, const char* name, uint32_t value, uint16_t result) {
    TraceFile file{TraceFile::Shared()};
    writeEvent(file, kind, 2, name, value, result);
}

void traceReceive(const PipeReader&, const uint8_t* bytes, const uint32_t* length) {
    TraceFile file;
    file.writeTime();
    file.write("< Receive Message > ] \n");
    file.writeBytes(bytes, *length);
    file.write("\n");
}

void traceReceiveHandle(const PipeReader& connection, int kind) {
    TraceFile file;
    file.writeTime();
    file.write("< Recv Command Handle > ] \n");
    if (kind == 1) file.writeHandle(connection.pipe);
    file.write("\n");
}

void traceSend(const PipeWriter&, const uint8_t* frame, const uint32_t* length) {
    TraceFile file;
    file.writeTime();
    file.write("< Send Command > %s] \n", nameOfCommand(frame));
    file.writeBytes(frame, *length);
    file.write("\n");
}

void traceSendHandle(const PipeWriter& connection, int kind, const uint8_t* bytes, const uint32_t* length) {
    TraceFile file;
    file.writeTime();
    file.write("< Send Command Handle > ] \n");
    if (kind == 1) file.writeHandle(connection.pipe);
    if (kind == 2) file.writeBytes(bytes, *length);
    file.write("\n");
}

}  // namespace trace
