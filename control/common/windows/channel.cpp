#include "common/channel.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <list>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "common/windows/handle.h"

namespace control {
namespace {

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

constexpr DWORD requestPipeSize = 1 << 20;

// A write to a pipe without a buffer lasts until the host has read it, which tells whether it has.
constexpr DWORD answerPipeSize = 0;

struct Pipe {
    Handle printerEnd, hostEnd;
};

// Only a named pipe can be waited for with a time limit at one end and block at the other.
Pipe makePipe(DWORD printerAccess, DWORD pipeType, DWORD hostAccess, DWORD size) {
    static std::atomic<unsigned> number{0};
    const std::wstring name = L"\\\\.\\pipe\\zprusb-simulator-" + std::to_wstring(GetCurrentProcessId()) +
                              L"-" + std::to_wstring(++number);
    Pipe pipe;
    pipe.printerEnd = checked(
        CreateNamedPipeW(name.c_str(), printerAccess | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
                         pipeType | PIPE_REJECT_REMOTE_CLIENTS, 1, size, size, 0, nullptr),
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

namespace {

/// An answer in the system's hands, from its writing until the host has read it.
struct UnreadAnswer {
    explicit UnreadAnswer(std::vector<uint8_t> answer) : bytes(std::move(answer)) {
        operation.hEvent = finished.get();
    }

    const std::vector<uint8_t> bytes;
    const Handle finished = makeEvent();
    OVERLAPPED operation{};
};

bool wasRead(const UnreadAnswer& answer) {
    return HasOverlappedIoCompleted(&answer.operation);
}

}  // namespace

struct Channel::Ends {
    Handle requests, answers, cancelled, finished;
    Handle hostWrite, hostRead;
    std::list<UnreadAnswer> unread;

    void takeBackAnswers();
};

void Channel::Ends::takeBackAnswers() {
    CancelIoEx(answers.get(), nullptr);
    for (UnreadAnswer& answer : unread) WaitForSingleObject(answer.finished.get(), INFINITE);
    unread.clear();
}

Channel::Channel() : ends_(std::make_unique<Ends>()) {
    ends_->cancelled = makeEvent();
    ends_->finished = makeEvent();
    Pipe requests = makePipe(PIPE_ACCESS_INBOUND, PIPE_TYPE_BYTE, GENERIC_WRITE, requestPipeSize);
    Pipe answers =
        makePipe(PIPE_ACCESS_OUTBOUND, PIPE_TYPE_MESSAGE, GENERIC_READ | FILE_WRITE_ATTRIBUTES, answerPipeSize);
    DWORD oneReadOneAnswer = PIPE_READMODE_MESSAGE;
    if (!SetNamedPipeHandleState(answers.hostEnd.get(), &oneReadOneAnswer, nullptr, nullptr))
        fail("answer pipe");
    ends_->requests = std::move(requests.printerEnd);
    ends_->answers = std::move(answers.printerEnd);
    ends_->hostWrite = std::move(requests.hostEnd);
    ends_->hostRead = std::move(answers.hostEnd);
}

Channel::~Channel() = default;

HostPipe Channel::takeHostWriteEnd() {
    return reinterpret_cast<HostPipe>(ends_->hostWrite.release());
}

HostPipe Channel::takeHostReadEnd() {
    return reinterpret_cast<HostPipe>(ends_->hostRead.release());
}

// Nothing of the operation is left in the system's hands when this returns.
Transfer Channel::read(uint8_t* bytes, size_t capacity, size_t& count, Milliseconds limit) {
    OVERLAPPED operation{};
    operation.hEvent = ends_->finished.get();
    const HANDLE pipe = ends_->requests.get();
    const BOOL started = ReadFile(pipe, bytes, static_cast<DWORD>(capacity), nullptr, &operation);
    if (!started && GetLastError() != ERROR_IO_PENDING) return Transfer::ended;
    const HANDLE events[] = {ends_->cancelled.get(), operation.hEvent};
    const Transfer waited = outcome(WaitForMultipleObjects(2, events, FALSE, waitTime(limit)));
    if (waited != Transfer::done) CancelIoEx(pipe, &operation);
    DWORD arrived = 0;
    const BOOL completed = GetOverlappedResult(pipe, &operation, &arrived, TRUE);
    count = arrived;
    if (waited == Transfer::ended) return waited;
    if (completed && arrived > 0) return Transfer::done;
    return waited == Transfer::timedOut ? waited : Transfer::ended;
}

Transfer Channel::write(const uint8_t* bytes, size_t length) {
    std::list<UnreadAnswer>& unread = ends_->unread;
    std::erase_if(unread, wasRead);
    if (unread.size() == maximumUnreadAnswers) return Transfer::done;
    if (WaitForSingleObject(ends_->cancelled.get(), 0) == WAIT_OBJECT_0) return Transfer::ended;
    UnreadAnswer& answer = unread.emplace_back(std::vector<uint8_t>(bytes, bytes + length));
    if (WriteFile(ends_->answers.get(), answer.bytes.data(), static_cast<DWORD>(length), nullptr,
                  &answer.operation) ||
        GetLastError() == ERROR_IO_PENDING)
        return Transfer::done;
    unread.pop_back();
    return Transfer::ended;
}

bool Channel::hasUnreadAnswer() {
    return !std::ranges::all_of(ends_->unread, wasRead);
}

Transfer Channel::pause(Milliseconds duration) {
    const DWORD waited = WaitForSingleObject(ends_->cancelled.get(), waitTime(duration));
    return waited == WAIT_TIMEOUT ? Transfer::timedOut : Transfer::ended;
}

void Channel::cancel() {
    SetEvent(ends_->cancelled.get());
}

void Channel::end() {
    ends_->takeBackAnswers();
    ends_->requests.close();
    ends_->answers.close();
}

}  // namespace control
