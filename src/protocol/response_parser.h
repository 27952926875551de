/// Turns the printer's numbers into result codes.
#pragma once

#include "protocol/answer.h"

namespace protocol {

enum class ParseMode {
    ErrorAnswer = 1,  ///< the error number of an error answer
    Status = 2        ///< the status number of a normal answer
};

/// @return whether the request succeeded: never for an error answer, and for a normal one when its number says
///         ready (0) or is a notice (2200 to 2212). A mode that doesn't fit the kind of the answer gives 2504.
bool parseResponse(ParseMode mode, const Answer& answer, uint16_t* resultCode);

/// Decodes a device error by its group and detail. Always returns false.
bool decodeDeviceError(const Answer& answer, uint16_t* resultCode);

/// 2601 to 2605 as 2600: the printer's own numbers mean nothing to a caller who only wanted a thing done.
uint16_t foldAnswerErrors(uint16_t code);

/// Whether a status check that ended with this code says that the printer is gone or cannot be reached.
bool isUnreachable(uint16_t code);

}  // namespace protocol
