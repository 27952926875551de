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

bool finish(bool success, uint16_t* resultCode) {
    setResult(resultCode, success ? ZPRUSB_SUCCESS : ZPRUSB_COMMUNICATION);
    return success;
}

}  // namespace

bool workerWrite(PipeWriter& writer, const uint8_t* request, uint32_t length, uint16_t* resultCode) {
    if (length > requestCapacity) return fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    HoldingApiLock lock(apiLock);
    auto* transfer = platform::create<Transfer>(writer.pipe.load(), length);
    if (transfer == nullptr) return finish(false, resultCode);
    std::memcpy(transfer->buffer, request, length);
    runOnWorker(writeWorker, transfer, writePipeAbandoned);
    const bool success = transfer != nullptr && transfer->success;
    platform::destroy(transfer);
    return finish(success, resultCode);
}

bool workerRead(PipeReader& reader, uint8_t* destination, uint32_t& count, uint16_t* resultCode) {
    HoldingApiLock lock(apiLock);
    count = 0;
    auto* transfer = platform::create<Transfer>(reader.pipe.load());
    if (transfer == nullptr) return finish(false, resultCode);
    runOnWorker(readWorker, transfer, readPipeAbandoned);
    const bool success = transfer != nullptr && transfer->success;
    if (success) {
        count = transfer->length;
        std::memcpy(destination, transfer->buffer, count);
    }
    platform::destroy(transfer);
    return finish(success, resultCode);
}

bool directWrite(PipeWriter& writer, const uint8_t* bytes, uint32_t length, uint16_t* resultCode) {
    platform::BrokenPipeGuard guard;
    uint32_t written = 0;
    return finish(platform::writePipe(writer.pipe, bytes, length, written), resultCode);
}

bool directWriteInChunks(PipeWriter& writer, const uint8_t* bytes, uint32_t length, uint16_t* resultCode,
                         uint32_t* sent) {
    if (length == 0) return false;
    platform::BrokenPipeGuard guard;
    uint32_t written = 0;
    const bool success = platform::writePipe(writer.pipe, bytes, length, written, chunkSize);
    if (sent != nullptr) *sent = written;
    return finish(success, resultCode);
}

bool directRead(PipeReader& reader, uint8_t* destination, uint32_t& count, uint16_t* resultCode) {
    return finish(platform::readPipe(reader.pipe, destination, directReadCapacity, count), resultCode);
}

bool lengthPrefixedRead(PipeReader& reader, uint8_t* destination, uint32_t& count, uint16_t* resultCode) {
    uint8_t piece[directReadCapacity];
    uint32_t received = 0;
    if (!platform::readPipe(reader.pipe, piece, directReadCapacity, received) || received == 0) {
        return finish(false, resultCode);
    }
    count = received - 1;
    std::memcpy(destination, piece + 1, count);
    finish(piece[0] == count, resultCode);
    return true;
}

}  // namespace device
