/// Printing a page.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

#include "bytes.h"
#include "media.h"
#include "printer.h"

namespace tool {

struct Page {
    Sheet sheet;
    uint16_t copies;
    std::optional<uint8_t> section;  // of a long page
    Bytes pixels;                    // 8-bit RGB, row by row
};

/// Whether a status means that the printer is printing a page, or in other hands.
bool isOccupied(uint16_t code);

/// Sends a page to the selected printer, and asks it afterwards whether it is still well. Ctrl-C, once it is
/// noted, ends the page before its next piece of data.
/// @param stallLimit how long the printer may take no data. A call that is stuck can't be ended, so the program
///        ends then.
/// @param progress is told the number of bytes sent so far; 0 when the page has been started, and nothing of it
///        can be on paper yet.
/// @return the page identifier: printer number x 256 + job number.
/// @throws Refusal
uint16_t sendPage(const Printer& printer, const Page& page, std::chrono::seconds stallLimit,
                  const std::function<void(size_t)>& progress);

/// Waits for a printer that is printing or in other hands. @throws Refusal after the time, or with Ctrl-C.
void awaitReady(const Printer& printer, const std::optional<unsigned>& seconds);

/// Waits until the printer is ready again, as it is when it has printed what was sent.
/// @throws Refusal also after the time, or with Ctrl-C.
void awaitPrinted(const Printer& printer, const std::optional<unsigned>& seconds);

}  // namespace tool
