#include "common/posix/channel_ends.h"

#include <fcntl.h>
#include <sys/eventfd.h>

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

bool makeWake(Descriptor& wake) {
    wake = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    return wake.isOpen();
}

bool dontBlock(const Descriptor& descriptor) {
    return fcntl(descriptor.get(), F_SETFL, fcntl(descriptor.get(), F_GETFL) | O_NONBLOCK) == 0;
}

}  // namespace

bool makeRequestPipe(RequestPipe kind, Descriptor& reader, Descriptor& writer) {
    const bool isBuffered = kind == RequestPipe::buffered;
    if (!makePipe(reader, writer, isBuffered ? 0 : O_DIRECT)) return false;
    const int size = fcntl(writer.get(), F_SETPIPE_SZ, isBuffered ? requestPipeSize : packetSize);
    return dontBlock(reader) && (isBuffered || size == packetSize);
}

bool ChannelEnds::make(RequestPipe kind) {
    if (!makeWake(wake) || !makeRequestPipe(kind, requests, hostWrite)) return false;
    if (!makePipe(hostRead, answers, O_DIRECT)) return false;  // one read, one answer
    fcntl(answers.get(), F_SETPIPE_SZ, answerPipeSize);
    return dontBlock(answers);
}

}  // namespace control
