/// Decoding picture files: one interface, with the system's own decoders behind it.
#pragma once

#include <memory>
#include <stdexcept>

#include "inspection.h"

namespace tool {

/// The decoder can't go on. Its text is a sentence for those who know the format.
class DecodingFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Gives the rows of a picture, from top to bottom as they are stored.
class Decoder {
public:
    enum class Model {
        rgb,   ///< three bytes each; what was transparent lies on white
        cmyk,  ///< four bytes each; 255 is no ink
    };

    virtual ~Decoder() = default;

    virtual Model model() const = 0;

    /// As stored.
    virtual Extent size() const = 0;

    /// To be called once, before the rows are read.
    /// @param reduction 1, 2, 4 or 8: how many times smaller the picture may become in each direction.
    /// @return how many times smaller it is, at most that; sides are rounded up.
    virtual unsigned start(unsigned reduction) = 0;

    /// @throws DecodingFailure
    virtual void read(uint8_t* row) = 0;

    /// What the decoder has found wrong so far without giving up; empty for nothing.
    virtual std::string complaint() const = 0;
};

/// @param file must stay while the decoder is used.
/// @param force goes on in spite of damage wherever the decoder can.
/// @throws DecodingFailure
std::unique_ptr<Decoder> makeDecoder(ByteView file, const Inspection& inspection, bool force);

}  // namespace tool
