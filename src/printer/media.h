#pragma once

#include "device/printer_object.h"
#include "protocol/media_table.h"

namespace printer {

using device::PrinterObject;
using device::Result;

/// Asks the printer for its media sizes. The caller has reserved it.
Result readMediaTable(PrinterObject& printer, protocol::MediaTable& table);

/// Makes a media size that the printer offers the size of the following pages; gives 1006, and keeps the former
/// size, when it is not offered.
Result checkMediaInfo(PrinterObject& printer, uint8_t mediaCode, uint32_t width, uint32_t length)
    REQUIRES(device::apiLock);

}  // namespace printer
