/// The library as the commands use it: opened for as long as the object lives, with failures as exceptions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "bytes.h"
#include "common_arguments.h"
#include "control_library.h"
#include "info_kinds.h"
#include "patience.h"

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
    /// Opens the library and selects a printer. A printer that another program is using is waited for, as the
    /// choice says.
    /// @throws Refusal
    explicit Printer(const PrinterChoice& choice);
    ~Printer();
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;

    /// All printers, whether selected or not, as of the last time that the library was opened.
    const std::vector<FoundPrinter>& all() const { return found_; }
    uint8_t number() const { return number_; }

    /// Result codes of the printers, in the order of the numbers. A printer that is busy is not waited for.
    std::vector<uint16_t> status(const std::vector<uint8_t>& numbers) const;

    /// Changes the selection. @throws Refusal
    void select(uint8_t number);

    /// Opens the library anew, as it takes after a printer was lost, and selects the same printer.
    /// @return whether it is there.
    bool reopen();

    /// Whether the time that the choice gives for waiting is over.
    bool isPastWait() const { return until_ && Clock::now() >= *until_; }

    /// Calls a function of the library, again while another program is using the printer.
    /// @param text the call as the source of a program has it.
    /// @throws Refusal
    void call(const std::string& text, const std::function<uint32_t(uint16_t* code)>& function) const;

    /// Changes a setting of the selected printer.
    /// @param tag one of ::zprusb_settingTag. @throws Refusal
    void set(uint16_t tag, ByteView value);

    /// These read from the selected printer. @throws Refusal
    Bytes read(const InfoKind& kind) const;
    std::vector<MediaSize> mediaList() const;
    std::string uniqueString() const;

private:
    bool neverWaits() const { return waitSeconds_ == 0u; }
    void open();
    uint8_t chosen(const std::string& who);
    Patience patience() const;

    const std::optional<unsigned> waitSeconds_;
    std::optional<Clock::time_point> until_;
    std::vector<FoundPrinter> found_;
    uint8_t number_ = 0;
};

/// The printers that another program is using now. The library must not be open.
std::vector<Device> printersInUse();

/// What a printer that is in use is refused with.
/// @param remark a sentence before that of the code, or nothing.
Refusal busyRefusal(const std::string& remark);

}  // namespace tool
