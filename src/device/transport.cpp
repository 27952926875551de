#include "device/transport.h"

#include <cstring>

#include "device/api_lock.h"
#include "platform/memory.h"
#include "platform/thread.h"

namespace device {

namespace {

/// All that a worker touches. A worker that nothing ends keeps its transfer for ever, so nothing of the
/// printer object or of the caller is in it.
struct Transfer {
    std::atomic<platform::PipeHandle> pipe;
    uint32_t length = 0;  // bytes to write, then bytes that were written or read
    bool success = false;
    uint8_t buffer[requestCapacity] = {};
};

void writeWorker(void* argument) {
    auto* transfer = static_cast<Transfer*>(argument);
    const uint32_t length = transfer->length;
    transfer->success = platform::writePipe(transfer->pipe, transfer->buffer, length, transfer->length);
}

void readWorker(void* argument) {
    auto* transfer = static_cast<Transfer*>(argument);
    const bool read = platform::readPipe(transfer->pipe, transfer->buffer, answerCapacity, transfer->length);
    transfer->success = read && transfer->length > 0;
}

/// In steps, as the limit is the printer's: a process that was stopped for longer goes on waiting.
bool waitForWorker(platform::Thread* thread) {
    bool ended = false;
    for (uint32_t waited = 0; !ended && waited < transferLimitMilliseconds; waited += waitStepMilliseconds) {
        ended = platform::waitForThread(thread, waitStepMilliseconds);
    }
    return ended;
}

/// Runs a transfer on a worker thread. Afterwards the transfer is the caller's again, unless its thread could
/// not be ended: then `transfer` is null.
void runOnWorker(void (*worker)(void*), Transfer*& transfer, std::atomic<bool>& pipeAbandoned) {
    platform::Thread* thread = platform::startThread(worker, transfer);
    if (thread == nullptr) return;
    bool ended = waitForWorker(thread);
    if (!ended) {
        pipeAbandoned = true;
        ended = platform::endThreadByForce(thread);
    }
    platform::closeThread(thread);
    if (!ended) transfer = nullptr;
}

Result doneIf(bool success) {
    return success ? done : failure(ZPRUSB_COMMUNICATION);
}

}  // namespace

Result workerWrite(PipeWriter& writer, const uint8_t* request, uint32_t length) {
    if (length > requestCapacity) return failure(ZPRUSB_BAD_ARGUMENT);
    HoldingApiLock lock(apiLock);
    auto* transfer = platform::create<Transfer>(writer.pipe.load(), length);
    if (transfer == nullptr) return doneIf(false);
    std::memcpy(transfer->buffer, request, length);
    runOnWorker(writeWorker, transfer, writePipeAbandoned);
    const bool success = transfer != nullptr && transfer->success;
    platform::destroy(transfer);
    return doneIf(success);
}

Result workerRead(PipeReader& reader, uint8_t* destination, uint32_t& count) {
    HoldingApiLock lock(apiLock);
    count = 0;
    auto* transfer = platform::create<Transfer>(reader.pipe.load());
    if (transfer == nullptr) return doneIf(false);
    runOnWorker(readWorker, transfer, readPipeAbandoned);
    const bool success = transfer != nullptr && transfer->success;
    if (success) {
        count = transfer->length;
        std::memcpy(destination, transfer->buffer, count);
    }
    platform::destroy(transfer);
    return doneIf(success);
}

Result directWrite(PipeWriter& writer, const uint8_t* bytes, uint32_t length) {
    platform::BrokenPipeGuard guard;
    uint32_t written = 0;
    return doneIf(platform::writePipe(writer.pipe, bytes, length, written));
}

Result directWriteInChunks(PipeWriter& writer, const uint8_t* bytes, uint32_t length, uint32_t* sent) {
    if (length == 0) return {};
    platform::BrokenPipeGuard guard;
    uint32_t written = 0;
    const bool success = platform::writePipe(writer.pipe, bytes, length, written, chunkSize);
    if (sent != nullptr) *sent = written;
    return doneIf(success);
}

Result directRead(PipeReader& reader, uint8_t* destination, uint32_t& count) {
    return doneIf(platform::readPipe(reader.pipe, destination, directReadCapacity, count));
}

Result lengthPrefixedRead(PipeReader& reader, uint8_t* destination, uint32_t& count) {
    uint8_t piece[directReadCapacity];
    uint32_t received = 0;
    if (!platform::readPipe(reader.pipe, piece, directReadCapacity, received) || received == 0) {
        return doneIf(false);
    }
    count = received - 1;
    std::memcpy(destination, piece + 1, count);
    return {true, doneIf(piece[0] == count).code};
}

}  // namespace device
