/// Bytes to and from the printer without the protocol, and without a time limit.
#pragma once

#include "device/printer_object.h"

namespace printer {

using device::PrinterObject;
using device::Result;

/// One write, then one read.
/// @param out receives at most `ZPRUSB_MAX_ANSWER_SIZE` bytes.
/// @param outCount receives their number.
Result transferRaw(PrinterObject& printer, const uint8_t* data, uint32_t length, uint8_t* out,
                   uint32_t* outCount);

/// Reserves the printer and reads length-prefixed pieces until one ends with a zero byte. Succeeds also when
/// a piece lies about its length or when there is more than fits, with 2600.
/// @param out receives the bytes of the pieces, at most `ZPRUSB_MAINTENANCE_READ_SIZE`; also those before a
///        read that fails.
Result readRaw(PrinterObject& printer, uint8_t* out);

}  // namespace printer
