/// The library as the commands use it: opened for as long as the object lives, with failures as exceptions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "bytes.h"
#include "info_kinds.h"

namespace tool {

/// Checks what a function of the library returned.
/// @param code by reference, as the call that fills it in may stand beside it among the arguments.
/// @throws Refusal
void require(uint32_t verdict, const uint16_t& code);

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

    /// Opens the library anew, as it takes after a printer was lost, and selects the same printer.
    /// @return whether it is there.
    bool reopen();

    /// Changes a setting of the selected printer.
    /// @param tag one of ::zprusb_settingTag. @throws Refusal
    void set(uint16_t tag, ByteView value);

    /// These read from the selected printer. @throws Refusal
    Bytes read(const InfoKind& kind) const;
    std::vector<MediaSize> mediaList() const;
    std::string uniqueString() const;

private:
    std::vector<FoundPrinter> found_;
    uint8_t number_ = 0;
};

}  // namespace tool
