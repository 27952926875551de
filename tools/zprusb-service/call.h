/// The one way in which the commands call the library's service functions.
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <string>

namespace tool {

using ServiceCall = std::function<uint32_t(uint16_t* code)>;

/// @param text the call as the source of a program has it.
/// @return the code.
uint16_t codeOf(const std::string& text, const ServiceCall& function);

/// @throws Refusal when it fails, and when it hands out data with a code: then not all of them arrived.
void call(const std::string& text, const ServiceCall& function);

std::string argumentText(const uint8_t* data);
std::string argumentText(uint8_t* out);
std::string argumentText(const uint32_t* length);
std::string argumentText(std::integral auto number) {
    return std::to_string(number);
}

/// A call of a function of the library, as it is told.
template <class... Arguments>
std::string callText(const char* name, Arguments... arguments) {
    return name + (std::string("(") + ... + (argumentText(arguments) + ", ")) + "&code)";
}

/// The same for a function of the library, whose last argument receives the code.
template <class... Parameters, class... Arguments>
uint16_t codeOf(const char* name, uint32_t (*function)(Parameters...), Arguments... arguments) {
    return codeOf(callText(name, arguments...), [&](uint16_t* code) { return function(arguments..., code); });
}

template <class... Parameters, class... Arguments>
void call(const char* name, uint32_t (*function)(Parameters...), Arguments... arguments) {
    call(callText(name, arguments...), [&](uint16_t* code) { return function(arguments..., code); });
}

}  // namespace tool
