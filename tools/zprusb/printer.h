/// The library as the commands use it: opened for as long as the object lives, with failures as exceptions.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "bytes.h"
#include "info_kinds.h"
#include "media.h"

namespace tool {

struct FoundPrinter {
    uint8_t number;
    std::string label;
};

class Printer {
public:
    /// Opens the library and selects a printer: the first one found, unless a number is given.
    /// @throws Refusal
    explicit Printer(std::optional<uint8_t> number);
    ~Printer();
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;

    /// All printers, whether selected or not.
    const std::vector<FoundPrinter>& all() const { return found_; }
    uint8_t number() const { return number_; }

    /// Result codes of the printers, in the order of the numbers.
    std::vector<uint16_t> status(const std::vector<uint8_t>& numbers) const;

    /// Changes the selection. @throws Refusal
    void select(uint8_t number);

    /// These read from the selected printer. @throws Refusal
    Bytes read(const InfoKind& kind) const;
    std::vector<MediaSize> mediaList() const;
    std::string uniqueString() const;

private:
    std::vector<FoundPrinter> found_;
    uint8_t number_ = 0;
};

struct Page {
    Sheet sheet;
    uint16_t copies;
    std::optional<uint8_t> section;  // of a long page
    Bytes pixels;                    // 8-bit RGB, row by row
};

/// Prints a page on the selected printer.
/// @param progress is told the number of bytes sent so far.
/// @return the page identifier: printer number x 256 + job number.
/// @throws Refusal
uint16_t printPage(const Page& page, const std::function<void(size_t)>& progress);

}  // namespace tool
