#pragma once

#include <cstdint>

#include "device/api_lock.h"

namespace api {

/// What zprusb_listupPrinter() does, for those inside who need the list: searches the printers with the first
/// slot's object, after which the calling thread's object selects that one's printer anew. It is away
/// from the API lock while it waits for a printer of another process.
/// @param list `ZPRUSB_MAX_PRINTERS` bytes.
uint32_t listPrinters(uint8_t* list) REQUIRES(device::apiLock);

}  // namespace api
