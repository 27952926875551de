/// Pipes as the library's transport takes them.
#pragma once

#include <utility>

#include "device/transport.h"
#include "fake_pipe.h"

struct TransferPipe {
    explicit TransferPipe(const FakePipe& pipe) : ends(pipe) {}
    TransferPipe(const TransferPipe&) = delete;
    TransferPipe& operator=(const TransferPipe&) = delete;
    ~TransferPipe() {
        close(ends.libraryEnd);
        close(ends.testEnd);
    }
    static void close(uint64_t& end) {
        if (end != platform::noPipe) closeEnd(std::exchange(end, platform::noPipe));
    }

    FakePipe ends;
};

struct RequestPipe : TransferPipe {
    RequestPipe() : TransferPipe(makeRequestPipe()) { writer.pipe = ends.libraryEnd; }
    Bytes next() { return receivePiece(ends.testEnd).value_or(Bytes{}); }

    device::PipeWriter writer;
};

struct AnswerPipe : TransferPipe {
    AnswerPipe() : TransferPipe(makeAnswerPipe()) { reader.pipe = ends.libraryEnd; }
    void give(const Bytes& answer) { sendBytes(ends.testEnd, answer); }

    device::PipeReader reader;
};
