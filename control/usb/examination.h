/// For programs that tell their user why a printer can't be used. Only this control library has it, which is
/// how it is told from others.
#pragma once

#include <cstdint>

extern "C" {

/// Looks on the bus and opens nothing.
/// @param text room for `size` characters; receives one line for each printer that is plugged in: where it is,
///        whether this process may use it, and who has its interface. Cut off where there is no more room.
/// @return how many printers are plugged in.
uint32_t zprusbusb_examine(char* text, uint32_t size);
}
