#include "common/posix/channel_ends.h"

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include "common/channel.h"

namespace control {
namespace {

// Image data come faster when the writer doesn't have to wait for the reader after each 64 KiB.
constexpr int requestPipeSize = 1 << 20;

// Each packet takes a page of the pipe.
constexpr int packetSize = 4096;
constexpr int answerPipeSize = packetSize * int{maximumUnreadAnswers};

bool makePipe(Descriptor& reader, Descriptor& writer, int flags) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | flags) != 0) return false;
    reader = Descriptor(ends[0]);
    writer = Descriptor(ends[1]);
    return true;
}

bool makePair(Descriptor& ofDevice, Descriptor& ofHost) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) return false;
    ofDevice = Descriptor(ends[0]);
    ofHost = Descriptor(ends[1]);
    return true;
}

bool makeWake(Descriptor& wake) {
    wake = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    return wake.isOpen();
}

bool dontBlock(const Descriptor& descriptor) {
    return fcntl(descriptor.get(), F_SETFL, fcntl(descriptor.get(), F_GETFL) | O_NONBLOCK) == 0;
}

}  // namespace

bool ChannelEnds::makeBuffered() {
    if (!makeWake(wake) || !makePipe(requests, hostWrite, 0)) return false;
    if (!makePipe(hostRead, answers, O_DIRECT)) return false;  // one read, one answer
    fcntl(hostWrite.get(), F_SETPIPE_SZ, requestPipeSize);
    fcntl(answers.get(), F_SETPIPE_SZ, answerPipeSize);
    return dontBlock(requests) && dontBlock(answers);
}

bool ChannelEnds::makeOneAtATime() {
    if (!makeWake(wake) || !makePipe(requests, hostWrite, O_DIRECT) || !makePair(answers, hostRead))
        return false;
    if (fcntl(hostWrite.get(), F_SETPIPE_SZ, packetSize) != packetSize) return false;
    return dontBlock(requests) && dontBlock(answers);
}

}  // namespace control
