/// Page sizes: what the user asks for, and what suits a picture.
/// Lengths are in 1/100 mm unless they say otherwise.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "info_records.h"

namespace tool {

/// A size as a user writes it.
struct WantedSize {
    enum class Unit { inch, millimetre, centimetre, either };

    double width;
    double length;  // 0 when the name tells none, as that of a variable length doesn't
    Unit unit;
    std::string name;  // as it was written
};

/// Understands "6x4", "6x4in", "152.4x101.6mm", "15x10cm", also with X or the times sign, with blanks, and as
/// the printer's list names it; without a unit inches are tried first, then millimetres.
/// @return none when the text is no size.
std::optional<WantedSize> parseSize(const std::string& text);

/// A page to print: a size of the list, with the length chosen when it is variable.
struct Sheet {
    MediaSize media;
    uint32_t length;

    uint32_t width() const { return media.width; }
};

/// The offered size of that name; otherwise the first one that is the wanted one, within half a millimetre and
/// whichever side is named first. The trade's names in centimetres are rounded: with these the nearest 3.5 mm
/// count as well.
/// @param ratio the picture's width divided by its height, by which a length that the name leaves open is
/// chosen.
std::optional<Sheet> findSheet(const std::vector<MediaSize>& offered, const WantedSize& wanted, double ratio);

/// The offered size whose proportions come closest to those of a picture, which may be turned for it. A fixed
/// size is preferred to a variable one that is no better.
/// @param ratio the picture's width divided by its height.
/// @return none when nothing is offered.
std::optional<Sheet> suitableSheet(const std::vector<MediaSize>& offered, double ratio);

/// The wanted size itself, for a page without a printer; without a unit it is in inches when both sides are
/// below 30.
Sheet sheetOf(const WantedSize& wanted);

/// Dots of a length in 1/100 mm.
uint32_t dotsOf(uint32_t hundredths);

}  // namespace tool
