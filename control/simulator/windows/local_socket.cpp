#include "local_socket.h"

#include <windows.h>

#include <tlhelp32.h>  // needs the header above

#include <algorithm>

#include "common/windows/handle.h"
#include "system.h"

namespace simulator {

using control::Handle;

namespace {

constexpr size_t longestMessage = 4 << 20;

std::wstring nameOf(uint32_t process) {
    return L"\\\\.\\pipe\\zprusb-simulator-control-" + std::to_wstring(process);
}

/// Says that nobody but the user of this process may do anything.
class OwnUserOnly {
public:
    OwnUserOnly() {
        HANDLE token = nullptr;
        DWORD size = 0;
        if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return;
        const bool isKnown = GetTokenInformation(token, TokenUser, user_, sizeof user_, &size) != 0;
        CloseHandle(token);
        const PSID sid = reinterpret_cast<TOKEN_USER*>(user_)->User.Sid;
        const auto list = reinterpret_cast<PACL>(list_);
        isMade_ = isKnown && InitializeAcl(list, sizeof list_, ACL_REVISION) &&
                  AddAccessAllowedAce(list, ACL_REVISION, GENERIC_ALL, sid) &&
                  InitializeSecurityDescriptor(&descriptor_, SECURITY_DESCRIPTOR_REVISION) &&
                  SetSecurityDescriptorDacl(&descriptor_, TRUE, list, FALSE);
    }

    SECURITY_ATTRIBUTES* get() { return isMade_ ? &attributes_ : nullptr; }

private:
    alignas(TOKEN_USER) uint8_t user_[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
    alignas(ACL) uint8_t list_[sizeof(ACL) + sizeof(ACCESS_ALLOWED_ACE) + SECURITY_MAX_SID_SIZE];
    SECURITY_DESCRIPTOR descriptor_{};
    SECURITY_ATTRIBUTES attributes_{sizeof attributes_, &descriptor_, FALSE};
    bool isMade_ = false;
};

/// Set when serving has to stop. It is never closed, as whoever stops it may be the last to live.
HANDLE bell() {
    static const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    return event;
}

/// One end of a pipe whose transfers end in time.
class PipeEnd {
public:
    explicit PipeEnd(HANDLE pipe) : pipe_(pipe) {}

    /// For the side that serves. @return false when it has to stop, or the pipe can't be used any more.
    bool awaitPeer() {
        OVERLAPPED operation = started();
        if (ConnectNamedPipe(pipe_.get(), &operation) || GetLastError() == ERROR_PIPE_CONNECTED) return true;
        if (GetLastError() != ERROR_IO_PENDING) return false;
        const HANDLE events[] = {bell(), finished_.get()};
        const bool hasPeer = WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0 + 1;
        SetLastError(ERROR_IO_PENDING);
        return finish(operation, 0) && hasPeer;
    }
    void dropPeer() { DisconnectNamedPipe(pipe_.get()); }

    bool send(std::string line, DWORD limit) {
        line += '\n';
        OVERLAPPED operation = started();
        WriteFile(pipe_.get(), line.data(), static_cast<DWORD>(line.size()), nullptr, &operation);
        return finish(operation, limit) == line.size();
    }

    std::optional<std::string> receiveLine(DWORD limit) {
        std::string line;
        char bytes[4096];
        while (line.size() < longestMessage) {
            OVERLAPPED operation = started();
            ReadFile(pipe_.get(), bytes, sizeof bytes, nullptr, &operation);
            const auto count = finish(operation, limit);
            if (!count || *count == 0) return std::nullopt;
            line.append(bytes, *count);
            if (!line.ends_with('\n')) continue;
            line.pop_back();
            return line;
        }
        return std::nullopt;
    }

private:
    OVERLAPPED started() {
        OVERLAPPED operation{};
        operation.hEvent = finished_.get();
        ResetEvent(finished_.get());
        SetLastError(ERROR_SUCCESS);
        return operation;
    }

    /// Nothing of the operation is left in the system's hands when this returns the bytes that it has moved.
    std::optional<size_t> finish(OVERLAPPED& operation, DWORD limit) {
        const DWORD error = GetLastError();
        if (error != ERROR_SUCCESS && error != ERROR_IO_PENDING) return std::nullopt;
        if (WaitForSingleObject(operation.hEvent, limit) != WAIT_OBJECT_0) CancelIoEx(pipe_.get(), &operation);
        DWORD count = 0;
        if (!GetOverlappedResult(pipe_.get(), &operation, &count, TRUE)) return std::nullopt;
        return count;
    }

    const Handle pipe_;
    const Handle finished_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

/// For the request of a peer, that it may not hold up those behind it; for an answer of one that is busy.
constexpr DWORD requestMilliseconds = 1000, answerMilliseconds = 30'000;

class PipeListener : public Listener {
public:
    explicit PipeListener(HANDLE pipe) : pipe_(pipe) {}

    void serve(const Answering& answer) override {
        while (pipe_.awaitPeer()) {
            const auto request = pipe_.receiveLine(requestMilliseconds);
            // To disconnect would take the answer away from a peer that has not read it: it closes its end
            // first.
            if (request && pipe_.send(answer(*request), requestMilliseconds))
                pipe_.receiveLine(requestMilliseconds);
            pipe_.dropPeer();
        }
    }

private:
    PipeEnd pipe_;
};

HANDLE connectTo(uint32_t process) {
    for (;;) {
        const HANDLE pipe = CreateFileW(nameOf(process).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
        const bool isBusy = pipe == INVALID_HANDLE_VALUE && GetLastError() == ERROR_PIPE_BUSY;
        if (!isBusy || !WaitNamedPipeW(nameOf(process).c_str(), answerMilliseconds)) return pipe;
    }
}

}  // namespace

std::unique_ptr<Listener> Listener::open() {
    constexpr DWORD bufferSize = 1 << 16;
    OwnUserOnly access;
    if (access.get() == nullptr) return nullptr;
    const HANDLE pipe = CreateNamedPipeW(
        nameOf(GetCurrentProcessId()).c_str(),
        PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
        PIPE_TYPE_BYTE | PIPE_REJECT_REMOTE_CLIENTS, 1, bufferSize, bufferSize, 0, access.get());
    if (pipe == INVALID_HANDLE_VALUE) return nullptr;
    return std::make_unique<PipeListener>(pipe);
}

void stopServing() {
    SetEvent(bell());
}

std::optional<std::string> askProcess(uint32_t process, const std::string& request) {
    const HANDLE pipe = connectTo(process);
    if (pipe == INVALID_HANDLE_VALUE) return std::nullopt;
    PipeEnd end(pipe);
    return end.send(request, answerMilliseconds) ? end.receiveLine(answerMilliseconds) : std::nullopt;
}

std::vector<uint32_t> simulatingProcesses() {
    std::vector<uint32_t> processes;
    const Handle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot.get(), &entry); more;
         more = Process32NextW(snapshot.get(), &entry)) {
        const uint32_t process = entry.th32ProcessID;
        if (askProcess(process, R"({"do": "show"})")) processes.push_back(process);
    }
    std::ranges::sort(processes);
    return processes;
}

}  // namespace simulator
