/// The one way in which the commands call the library's service functions.
#pragma once

#include <cstdint>
#include <functional>

namespace tool {

using ServiceCall = std::function<uint32_t(uint16_t* code)>;

/// @throws Refusal when it fails, and when it hands out data with a code: then not all of them arrived.
void call(const ServiceCall& function);

/// @return the code.
uint16_t codeOf(const ServiceCall& function);

}  // namespace tool
