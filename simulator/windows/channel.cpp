#include "channel.h"

#include <windows.h>

#include <atomic>
#include <string>
#include <system_error>
#include <utility>

namespace simulator {
namespace {

class Handle {
public:
    explicit Handle(HANDLE value = INVALID_HANDLE_VALUE) : value_(value) {}
    Handle(Handle&& other) noexcept : value_(other.release()) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~Handle() { close(); }

    HANDLE get() const { return value_; }
    HANDLE release() { return std::exchange(value_, INVALID_HANDLE_VALUE); }
    void close() {
        if (value_ != INVALID_HANDLE_VALUE) CloseHandle(release());
    }

private:
    HANDLE value_;
};

[[noreturn]] void fail(const char* what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

Handle checked(HANDLE handle, const char* what) {
    if (handle == INVALID_HANDLE_VALUE || handle == nullptr) fail(what);
    return Handle(handle);
}

Handle makeEvent() {
    return checked(CreateEventW(nullptr, TRUE, FALSE, nullptr), "CreateEvent");
}

constexpr DWORD pipeSize = 1 << 20;

struct Pipe {
    Handle printerEnd, hostEnd;
};

// Only a named pipe can be waited for with a time limit at one end and block at the other.
Pipe makePipe(DWORD printerAccess, DWORD pipeType, DWORD hostAccess) {
    static std::atomic<unsigned> number{0};
    const std::wstring name = L"\\\\.\\pipe\\zprusb-simulator-" + std::to_wstring(GetCurrentProcessId()) +
                              L"-" + std::to_wstring(++number);
    Pipe pipe;
    pipe.printerEnd = checked(
        CreateNamedPipeW(name.c_str(), printerAccess | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
                         pipeType | PIPE_REJECT_REMOTE_CLIENTS, 1, pipeSize, pipeSize, 0, nullptr),
        "CreateNamedPipe");
    pipe.hostEnd =
        checked(CreateFileW(name.c_str(), hostAccess, 0, nullptr, OPEN_EXISTING, 0, nullptr), "CreateFile");
    return pipe;
}

DWORD waitTime(Milliseconds limit) {
    return limit >= Milliseconds(INFINITE) ? INFINITE : static_cast<DWORD>(limit.count());
}

Transfer outcome(DWORD waited) {
    if (waited == WAIT_TIMEOUT) return Transfer::timedOut;
    return waited == WAIT_OBJECT_0 + 1 ? Transfer::done : Transfer::ended;
}

}  // namespace

struct Channel::Ends {
    Handle requests, answers, cancelled, finished;
    HostPipe hostWrite = noPipe, hostRead = noPipe;

    Transfer finish(HANDLE pipe, OVERLAPPED& operation, BOOL started, DWORD& count, Milliseconds limit);
};

// Nothing of the operation is left in the system's hands when this returns.
Transfer Channel::Ends::finish(HANDLE pipe, OVERLAPPED& operation, BOOL started, DWORD& count,
                               Milliseconds limit) {
    if (!started && GetLastError() != ERROR_IO_PENDING) return Transfer::ended;
    const HANDLE events[] = {cancelled.get(), operation.hEvent};
    const Transfer waited = outcome(WaitForMultipleObjects(2, events, FALSE, waitTime(limit)));
    if (waited != Transfer::done) CancelIoEx(pipe, &operation);
    const BOOL completed = GetOverlappedResult(pipe, &operation, &count, TRUE);
    if (waited == Transfer::ended) return waited;
    if (completed && count > 0) return Transfer::done;
    return waited == Transfer::timedOut ? waited : Transfer::ended;
}

Channel::Channel() : ends_(std::make_unique<Ends>()) {
    ends_->cancelled = makeEvent();
    ends_->finished = makeEvent();
    Pipe requests = makePipe(PIPE_ACCESS_INBOUND, PIPE_TYPE_BYTE, GENERIC_WRITE);
    Pipe answers = makePipe(PIPE_ACCESS_OUTBOUND, PIPE_TYPE_MESSAGE, GENERIC_READ | FILE_WRITE_ATTRIBUTES);
    DWORD oneReadOneAnswer = PIPE_READMODE_MESSAGE;
    if (!SetNamedPipeHandleState(answers.hostEnd.get(), &oneReadOneAnswer, nullptr, nullptr))
        fail("answer pipe");
    ends_->requests = std::move(requests.printerEnd);
    ends_->answers = std::move(answers.printerEnd);
    ends_->hostWrite = reinterpret_cast<HostPipe>(requests.hostEnd.release());
    ends_->hostRead = reinterpret_cast<HostPipe>(answers.hostEnd.release());
}

Channel::~Channel() = default;

HostPipe Channel::hostWriteEnd() const {
    return ends_->hostWrite;
}

HostPipe Channel::hostReadEnd() const {
    return ends_->hostRead;
}

Transfer Channel::read(uint8_t* bytes, size_t capacity, size_t& count, Milliseconds limit) {
    OVERLAPPED operation{};
    operation.hEvent = ends_->finished.get();
    const HANDLE pipe = ends_->requests.get();
    const BOOL started = ReadFile(pipe, bytes, static_cast<DWORD>(capacity), nullptr, &operation);
    DWORD arrived = 0;
    const Transfer result = ends_->finish(pipe, operation, started, arrived, limit);
    count = arrived;
    return result;
}

Transfer Channel::write(const uint8_t* bytes, size_t length) {
    OVERLAPPED operation{};
    operation.hEvent = ends_->finished.get();
    const HANDLE pipe = ends_->answers.get();
    const BOOL started = WriteFile(pipe, bytes, static_cast<DWORD>(length), nullptr, &operation);
    DWORD written = 0;
    const Transfer result = ends_->finish(pipe, operation, started, written, forever);
    // The host may have taken the answer and closed the printer before this thread ran again.
    return written == length ? Transfer::done : result;
}

Transfer Channel::pause(Milliseconds duration) {
    const DWORD waited = WaitForSingleObject(ends_->cancelled.get(), waitTime(duration));
    return waited == WAIT_TIMEOUT ? Transfer::timedOut : Transfer::ended;
}

void Channel::cancel() {
    SetEvent(ends_->cancelled.get());
}

void Channel::end() {
    ends_->requests.close();
    ends_->answers.close();
}

void closeHostPipe(HostPipe pipe) {
    CloseHandle(reinterpret_cast<HANDLE>(pipe));
}

}  // namespace simulator
