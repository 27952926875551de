/// What a printer remembers, for people and tools to read.
#pragma once

#include <string>

#include "printer.h"

namespace simulator {

/// @return JSON text as zprusbsim_state() hands it out. The caller holds the printer's lock.
std::string describe(const Printer& printer);

}  // namespace simulator
