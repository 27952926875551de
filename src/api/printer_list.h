#pragma once

#include <cstdint>

namespace api {

/// What zprusb_listupPrinter() does, for those inside who need the list: searches the printers with the first
/// slot's object, after which the calling thread's object selects that one's printer anew. Runs under the
/// API lock, but is away from it while it waits for a printer of another process.
/// @param list `ZPRUSB_MAX_PRINTERS` bytes.
uint32_t listPrinters(uint8_t* list);

}  // namespace api
