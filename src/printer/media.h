#pragma once

#include <optional>

#include "device/printer_object.h"
#include "protocol/media_table.h"

namespace printer {

using device::PrinterObject;

/// Asks the printer for its media sizes. The caller has reserved it.
std::optional<protocol::MediaTable> readMediaTable(PrinterObject& printer, uint16_t* resultCode);

/// Makes a media size that the printer offers the size of the following pages; gives 1006, and keeps the former
/// size, when it is not offered.
bool checkMediaInfo(PrinterObject& printer, uint8_t mediaCode, uint32_t width, uint32_t length,
                    uint16_t* resultCode);

}  // namespace printer
