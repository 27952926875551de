/// Printing a page: copies, start, image data, end. The printer stays reserved for the calling thread from a
/// start that succeeded to the end.
#pragma once

#include "device/printer_object.h"

namespace printer {

using device::PrinterObject;

/// Runs without the ApiLock.
bool setCopies(PrinterObject& printer, uint16_t copies, uint16_t* resultCode);

bool startPage(PrinterObject& printer, uint16_t* pageId, uint16_t* resultCode);

/// @param sectionIndex 0: the whole print; 1 to 5: a section, which does not reserve the printer. Above, it is
///        refused with 1006 and nothing is sent.
bool startLongPage(PrinterObject& printer, uint16_t* pageId, uint8_t sectionIndex, uint16_t* resultCode);

/// Runs without the ApiLock.
bool endPage(PrinterObject& printer, uint16_t* resultCode);

}  // namespace printer
