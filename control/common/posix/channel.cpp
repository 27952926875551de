#include "common/channel.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "common/posix/channel_ends.h"

namespace control {
namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

int pollTimeout(Milliseconds limit) {
    constexpr Milliseconds longest{1'000'000'000};
    return limit == forever ? -1 : static_cast<int>(std::min(limit, longest).count());
}

}  // namespace

struct Channel::Ends : ChannelEnds {
    Transfer wait(const Descriptor& descriptor, short events, Milliseconds limit) const;
};

Transfer Channel::Ends::wait(const Descriptor& descriptor, short events, Milliseconds limit) const {
    pollfd polled[] = {{wake.get(), POLLIN, 0}, {descriptor.get(), events, 0}};
    int ready;
    do {
        ready = poll(polled, std::size(polled), pollTimeout(limit));
    } while (ready < 0 && errno == EINTR);
    if (ready < 0 || polled[0].revents != 0) return Transfer::ended;
    return ready == 0 ? Transfer::timedOut : Transfer::done;
}

Channel::Channel() : ends_(std::make_unique<Ends>()) {
    if (!ends_->make(RequestPipe::buffered)) fail("pipe");
}

Channel::~Channel() = default;

HostPipe Channel::takeHostWriteEnd() {
    return static_cast<HostPipe>(ends_->hostWrite.release());
}

HostPipe Channel::takeHostReadEnd() {
    return static_cast<HostPipe>(ends_->hostRead.release());
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
    eventfd_write(ends_->wake.get(), 1);
}

void Channel::end() {
    ends_->requests.close();
    ends_->answers.close();
}

}  // namespace control
