/// Converting colours from one profile to another: one interface, with the system's own colour management
/// behind it.
#pragma once

#include <memory>
#include <stdexcept>

#include "decoder.h"

namespace tool {

enum class Intent { perceptual, relative, saturation, absolute };

/// Its text ends a sentence that begins with the picture.
class UnusableProfile : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class ColourConversion {
public:
    virtual ~ColourConversion() = default;

    /// @param from pixels of the decoder's model. @param to as many of three bytes.
    virtual void convert(const uint8_t* from, uint8_t* to, uint32_t pixels) const = 0;
};

/// @param from, to ICC profiles; empty ones are sRGB.
/// @param model of the pixels to convert. Those of a picture in greys are RGB, whatever its profile.
/// @throws UnusableProfile when one of them is damaged, or not for such pixels.
std::unique_ptr<ColourConversion> makeConversion(ByteView from, ByteView to, Decoder::Model model,
                                                 Intent intent);

}  // namespace tool
