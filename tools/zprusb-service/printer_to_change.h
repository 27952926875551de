#pragma once

#include "arguments.h"
#include "identity.h"
#include "printer.h"

namespace tool {

/// A printer that somebody has chosen to change, and said so.
class PrinterToChange {
public:
    /// Asks on the terminal, unless the command line says yes.
    /// @param deed what is going to be done: "empty the error log".
    /// @throws Refusal
    /// @throws WrongUsage when the answer is no or there is no terminal to ask on, and when there are several
    ///         printers and the command line names none.
    PrinterToChange(const Arguments& common, const std::string& deed);

    const Printer& operator*() const { return printer_; }
    const Printer* operator->() const { return &printer_; }

private:
    Printer printer_;
};

/// @throws WrongUsage when there are several printers and the command line names none.
void requireChoice(const Arguments& common, const Printer& printer);

}  // namespace tool
