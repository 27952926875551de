/// The receivers: each reads the one answer to the request that was just sent, and decodes it.
///
/// Each returns whether the request succeeded. All give 2600 for an answer that cannot be read or, unless the
/// decoding has a code of its own, has not the length that its header announces. An error answer always fails
/// with the code of its number and hands out nothing.
#pragma once

#include "protocol/answer.h"

namespace protocol {

using device::PipeReader;

struct Payload {
    std::array<uint8_t, device::directReadCapacity> bytes{};  // zero behind what arrived
    uint32_t count = 0;                                       // bytes that arrived, at most what was announced
};

/// For a status check: a normal answer is decoded by its status number, and the two flag bytes together mean
/// 2100. Notices count as ready. 2601 to 2605 are reported as 2600.
bool receiveStatus(PipeReader& reader, uint16_t* resultCode);

/// For a command that is only acknowledged. 2601 to 2605 are reported as 2600.
bool receiveAck(PipeReader& reader, uint16_t* resultCode);

/// For a status whose bytes are looked at. Succeeds also with a wrong length, with 2600.
bool receiveWholeAnswer(PipeReader& reader, Answer& answer, uint16_t* resultCode);

/// For data. Succeeds also with a wrong length, with 2600.
bool receivePayload(PipeReader& reader, Payload& payload, uint16_t* resultCode);

/// As receivePayload(), read directly on the calling thread without a time limit.
/// @param count receives the low byte of the announced length.
bool receiveCountedPayload(PipeReader& reader, Payload& payload, uint8_t& count, uint16_t* resultCode);

/// Reads any answer directly on the calling thread, without a time limit, and does not look at it: that there
/// was one is what counts.
bool dropAnswer(PipeReader& reader, uint16_t* resultCode);

}  // namespace protocol
