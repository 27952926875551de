/// The exchanges that operations are made of: each sends one request and reads the one answer to it. What they
/// report is what their last step came to: 1006 for an empty request, 2600 for a request that can't be written
/// and for an answer that can't be read or, unless its decoding has a code of its own, has not the length that
/// its header announces. An error answer always fails with the code of its number and hands out nothing.
#pragma once

#include "device/result.h"
#include "protocol/answer.h"
#include "protocol/request.h"

namespace protocol {

using device::Connection;
using device::Result;

/// A command that is acknowledged. 2601 to 2605 are reported as 2600.
Result perform(Connection& connection, const Request& request);

/// A question for data. Succeeds also with a wrong length, with 2600.
Result fetch(Connection& connection, const Request& request, Payload& payload);

/// The status check: a normal answer is decoded by its status number, and the two flag bytes together mean
/// 2100. Notices count as ready. 2601 to 2605 are reported as 2600.
Result checkStatus(Connection& connection);

/// The status, for those who look at its bytes. Succeeds also with a wrong length, with 2600.
Result fetchStatus(Connection& connection, Answer& answer);

/// A command of which only the writing is bounded in time: the answer is read directly on the calling thread.
/// Otherwise as fetch().
/// @param announced receives the low byte of the payload's length, if there was an answer that is none of an
/// error.
Result fetchDirectly(Connection& connection, const Request& request, Payload& payload, uint8_t& announced);

/// Any answer, not looked at.
Result exchange(Connection& connection, const Request& request, Answer& answer);

/// The halves, for those who go on without an answer or have another way to read it.
Result send(Connection& connection, const Request& request);

/// As send(), on the calling thread without a time limit.
Result sendDirectly(Connection& connection, const Request& request);
Result receiveStatus(Connection& connection, Answer& answer);

/// Reads any answer directly on the calling thread, without a time limit: that there was one is what counts.
Result dropAnswer(Connection& connection);

}  // namespace protocol
