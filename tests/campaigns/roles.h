/// What the test program does when it is started as another process of a campaign.
#pragma once

#include <string>

/// Prints on the two printers of a page folder until it is killed. It tells when it has one: "S" or "E" (start
/// or end), the printer, and the time in nanoseconds.
int shareThePrinters(const std::string& folder);

/// Opens a page, on a printer of the page folder or one of its own; tells that, and ends it when its input
/// ends.
int holdASharedPrinter(const std::string& folder);
int holdItsOwnPrinter(const std::string& folder);

/// Opens a page on the second printer of the page folder, and tells that. When its input ends, both printers
/// are plugged in anew, and it looks for them.
int searchForBothPrinters(const std::string& folder);

/// Ends the process while the library is in the state of that name.
int endInState(const std::string& state);

constexpr struct Role {
    const char* name;
    int (*play)(const std::string& argument);
} roles[] = {{"share", shareThePrinters},
             {"hold shared", holdASharedPrinter},
             {"hold own", holdItsOwnPrinter},
             {"search", searchForBothPrinters},
             {"end", endInState}};
