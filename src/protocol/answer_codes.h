/// Turns the printer's numbers into result codes.
#pragma once

#include "device/result.h"
#include "protocol/answer.h"

namespace protocol {

using device::Result;

/// By the error number of an error answer: always a failure.
Result decodeErrorAnswer(const Answer& answer);

/// By the status number of a normal answer: a success when it says ready (0) or is a notice (2200 to 2212).
Result decodeStatusNumber(const Answer& answer);

/// 2601 to 2605 as 2600: the printer's own numbers mean nothing to a caller who only wanted a thing done.
Result foldAnswerErrors(Result result);

/// Whether a status check that ended with this code says that the printer is gone or cannot be reached.
bool isUnreachable(uint16_t code);

}  // namespace protocol
