/// Printing a page: copies, start, image data, end. The printer stays reserved for the calling thread from a
/// start that succeeded to the end.
#pragma once

#include "device/printer_object.h"

namespace printer {

using device::PrinterObject;
using device::Result;

/// Runs without the API lock.
Result setCopies(PrinterObject& printer, uint16_t copies);

Result startPage(PrinterObject& printer, uint16_t* pageId) REQUIRES(device::apiLock);

/// @param sectionIndex 0: the whole print; 1 to 5: a section, which does not reserve the printer. Above, it is
///        refused with 1006 and nothing is sent.
Result startLongPage(PrinterObject& printer, uint16_t* pageId, uint8_t sectionIndex) REQUIRES(device::apiLock);

/// Bulk data: the image data of a page, and whatever service sends. With a length of 0, nothing is sent, the
/// result is false and no code is written.
/// @param length read, not changed.
Result writeData(PrinterObject& printer, const uint8_t* data, const uint32_t* length);

/// Runs without the API lock.
Result endPage(PrinterObject& printer);

}  // namespace printer
