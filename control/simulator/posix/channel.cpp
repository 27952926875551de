#include "channel.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace simulator {
namespace {

class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() { close(); }

    int get() const { return number_; }
    int release() { return std::exchange(number_, -1); }
    void close() {
        if (number_ >= 0) ::close(release());
    }

private:
    int number_;
};

struct Pipe {
    Descriptor readEnd, writeEnd;
};

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

Pipe makePipe(int flags) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | flags) != 0) fail("pipe");
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

void dontBlock(const Descriptor& descriptor) {
    fcntl(descriptor.get(), F_SETFL, fcntl(descriptor.get(), F_GETFL) | O_NONBLOCK);
}

int pollTimeout(Milliseconds limit) {
    constexpr Milliseconds longest{1'000'000'000};
    return limit == forever ? -1 : static_cast<int>(std::min(limit, longest).count());
}

// Image data come faster when the writer doesn't have to wait for the reader after each 64 KiB.
constexpr int requestPipeSize = 1 << 20;

// Each packet takes a page of the pipe.
constexpr int answerPipeSize = 4096 * maximumUnreadAnswers;

}  // namespace

struct Channel::Ends {
    Descriptor requests, answers, cancelled;
    HostPipe hostWrite = noPipe, hostRead = noPipe;

    Transfer wait(const Descriptor& descriptor, short events, Milliseconds limit) const;
};

Transfer Channel::Ends::wait(const Descriptor& descriptor, short events, Milliseconds limit) const {
    pollfd polled[] = {{cancelled.get(), POLLIN, 0}, {descriptor.get(), events, 0}};
    int ready;
    do {
        ready = poll(polled, std::size(polled), pollTimeout(limit));
    } while (ready < 0 && errno == EINTR);
    if (ready < 0 || polled[0].revents != 0) return Transfer::ended;
    return ready == 0 ? Transfer::timedOut : Transfer::done;
}

Channel::Channel() : ends_(std::make_unique<Ends>()) {
    ends_->cancelled = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (ends_->cancelled.get() < 0) fail("eventfd");
    Pipe requests = makePipe(0);
    Pipe answers = makePipe(O_DIRECT);  // one read, one answer
    fcntl(requests.writeEnd.get(), F_SETPIPE_SZ, requestPipeSize);
    fcntl(answers.writeEnd.get(), F_SETPIPE_SZ, answerPipeSize);
    dontBlock(requests.readEnd);
    dontBlock(answers.writeEnd);
    ends_->requests = std::move(requests.readEnd);
    ends_->answers = std::move(answers.writeEnd);
    ends_->hostWrite = static_cast<HostPipe>(requests.writeEnd.release());
    ends_->hostRead = static_cast<HostPipe>(answers.readEnd.release());
}

Channel::~Channel() = default;

HostPipe Channel::hostWriteEnd() const {
    return ends_->hostWrite;
}

HostPipe Channel::hostReadEnd() const {
    return ends_->hostRead;
}

Transfer Channel::read(uint8_t* bytes, size_t capacity, size_t& count, Milliseconds limit) {
    const Transfer waited = ends_->wait(ends_->requests, POLLIN, limit);
    if (waited != Transfer::done) return waited;
    const ssize_t arrived = ::read(ends_->requests.get(), bytes, capacity);
    count = static_cast<size_t>(std::max<ssize_t>(arrived, 0));
    return arrived > 0 ? Transfer::done : Transfer::ended;
}

Transfer Channel::write(const uint8_t* bytes, size_t length) {
    const Transfer room = ends_->wait(ends_->answers, POLLOUT, Milliseconds(0));
    if (room != Transfer::done) return room == Transfer::timedOut ? Transfer::done : Transfer::ended;
    // A packet of up to 4096 bytes is written whole or not at all.
    return ::write(ends_->answers.get(), bytes, length) > 0 ? Transfer::done : Transfer::ended;
}

bool Channel::hasUnreadAnswer() {
    int unread = 0;
    return ioctl(ends_->answers.get(), FIONREAD, &unread) == 0 && unread > 0;
}

Transfer Channel::pause(Milliseconds duration) {
    return ends_->wait(Descriptor(), 0, duration);
}

void Channel::cancel() {
    eventfd_write(ends_->cancelled.get(), 1);
}

void Channel::end() {
    ends_->requests.close();
    ends_->answers.close();
}

void closeHostPipe(HostPipe pipe) {
    ::close(static_cast<int>(pipe));
}

}  // namespace simulator
