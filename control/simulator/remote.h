/// What other processes ask of this one's printers.
#pragma once

#include <string>

namespace simulator {

/// @param request a JSON object: "do" says what, the other keys with what.
/// @return a JSON object in one line, which has the key "error" when nothing was done.
std::string answerRequest(const std::string& request);

}  // namespace simulator
