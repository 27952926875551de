/// Entry points of the library that are not exported: a program that is linked with the static archive can
/// call them. They keep the conventions of zprusb.h.

#pragma once

#include <zprusb.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Opens the library as zprusb_open() does.
/// @param unused has no effect.
uint32_t zprusb_openForUpdate(uint32_t unused, uint16_t* resultCode);

/// Searches the printers and lists their identifiers.
/// @param ids 1024 bytes: 8 for each printer found, in the order found; the rest is filled with 0xFF.
/// @return the number of printers found; 0 also when there are 128.
uint32_t zprusb_listupPrinterId(uint8_t* ids);

/// Selects the printer with the given identifier.
/// @param printerId its 8 bytes in memory order; eight 0xFF bytes ask for the present selection.
/// @param resultCode 0; 1008; 1501.
/// @return the object's selected identifier (8 bytes, owned by the library, valid until the objects are
///         released); null when there is no object.
uint8_t* zprusb_selectPrinterId(uint64_t printerId, uint16_t* resultCode);

#ifdef __cplusplus
}
#endif
