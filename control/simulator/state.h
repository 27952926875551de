/// What a printer is and remembers, as JSON.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "printer.h"

namespace simulator {

using State = nlohmann::ordered_json;

/// The caller holds the printer's lock.
State stateOf(const Printer& printer);

/// @param indentation -1: all in one line.
std::string textOf(const State& state, int indentation);

}  // namespace simulator
