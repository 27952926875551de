/// From the bytes of a picture file to a page.
#pragma once

#include <string>

#include "colours.h"
#include "failure.h"
#include "inspection.h"
#include "picture.h"

namespace tool {

/// How pictures are read.
struct Reading {
    uint64_t mostPixels = 100'000'000;  // a picture with more is refused: this is what limits memory and time
    bool force = false;                 // reads what can be read of a damaged file
    Bytes printerProfile{};             // ICC; empty for sRGB
    Intent intent = Intent::relative;
};

class PictureReader {
public:
    /// Looks at the file; nothing is decoded yet.
    /// @param name of the file, for the sentences that refuse it.
    /// @throws UnusableFile
    PictureReader(std::string name, Bytes file, Reading reading);

    /// The size of the picture when it is upright.
    Extent size() const { return inspection_.size * inspection_.turn; }

    /// The page with the picture on it, in the printer's colours. It is decoded at the smallest scale that has
    /// all that the page can show, and no more of it is kept than the rows which are being worked on.
    /// With a border so wide that nothing is left, the page is white.
    /// @throws UnusableFile
    Picture page(Extent dots, const Layout& layout) const;

private:
    [[noreturn]] void refuse(const std::string& reason) const;
    void refuseDamage(const std::string& reason) const;  // unless it is forced
    void requireBounds() const;
    std::unique_ptr<ColourConversion> conversionOf(const Bytes& profile, Decoder::Model model) const;
    std::unique_ptr<ColourConversion> conversionFor(Decoder::Model model) const;
    /// @param rows becomes the number of those that could be decoded.
    void draw(const Placement& placement, Picture& page, uint32_t& rows) const;

    const std::string name_;
    const Bytes file_;
    const Reading reading_;
    Inspection inspection_;
};

}  // namespace tool
