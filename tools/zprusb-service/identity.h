#pragma once

#include <string>

#include "printer.h"
#include "view.h"

namespace tool {

/// Which printer it is, as far as it tells. What it does not tell is "unknown".
struct Identity {
    std::string model;
    std::string name;
    std::string serial;
    std::string firmware;

    std::string inWords() const;
    Json inJson() const;
};

/// Of the selected printer; whoever wants to mend one that is half dead gets as much as there is.
Identity identify(const Printer& printer);

/// Of the selected printer. @throws Refusal
std::string modelName();

}  // namespace tool
