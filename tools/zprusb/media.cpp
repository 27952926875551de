#include "media.h"

#include <zprusb.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>
#include <utility>

#include "view.h"

namespace tool {
namespace {

constexpr uint8_t exactSize = ZPRUSB_FIRST_EXACT_CODE;
constexpr uint32_t shortestVariable = ZPRUSB_SHORTEST_VARIABLE_LENGTH;
constexpr uint32_t tolerance = 50;
constexpr uint32_t toleranceOfCentimetres = 350;
constexpr double noticeable = 0.001;  // difference of proportions, as a logarithm

/// Takes a positive number off the front of the text.
std::optional<double> takeNumber(std::string_view& text) {
    double number = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if (error != std::errc{} || !(number > 0 && number < 10000)) return std::nullopt;
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return number;
}

void takeBlanks(std::string_view& text) {
    while (text.starts_with(' ')) text.remove_prefix(1);
}

/// Takes the sign between the sides.
bool takeTimes(std::string_view& text) {
    for (const std::string_view times : {"x", "X", "\u00D7"}) {
        if (!text.starts_with(times)) continue;
        text.remove_prefix(times.size());
        return true;
    }
    return false;
}

std::optional<WantedSize::Unit> unitOf(std::string_view word) {
    if (word.empty()) return WantedSize::Unit::either;
    if (word == "in" || word == "inch") return WantedSize::Unit::inch;
    if (word == "mm") return WantedSize::Unit::millimetre;
    if (word == "cm") return WantedSize::Unit::centimetre;
    return std::nullopt;
}

/// What the words of a user can mean, the likeliest first: width and length.
std::vector<std::pair<double, double>> readings(const WantedSize& wanted) {
    constexpr std::pair<WantedSize::Unit, double> units[] = {{WantedSize::Unit::inch, hundredthsPerInch},
                                                             {WantedSize::Unit::centimetre, 1000},
                                                             {WantedSize::Unit::millimetre, 100}};
    std::vector<std::pair<double, double>> sizes;
    for (const auto& [unit, hundredths] : units) {
        const bool guessed = wanted.unit == WantedSize::Unit::either && unit != WantedSize::Unit::centimetre;
        if (!guessed && wanted.unit != unit) continue;
        sizes.emplace_back(wanted.width * hundredths, wanted.length * hundredths);
        sizes.emplace_back(wanted.length * hundredths, wanted.width * hundredths);
    }
    return sizes;
}

bool near(uint32_t offered, double wanted, uint32_t within) {
    return std::abs(offered - wanted) <= within;
}

std::optional<Sheet> match(const MediaSize& media, double width, double length, uint32_t within) {
    if (!near(media.width, width, within)) return std::nullopt;
    if (!media.variable())
        return near(media.length, length, within) ? std::optional(Sheet{media, media.length}) : std::nullopt;
    if (length < shortestVariable || length > media.longest) return std::nullopt;
    return Sheet{media, static_cast<uint32_t>(std::lround(length))};
}

/// The sheet of this size that suits best; of a variable length, the one that a picture fills entirely, with
/// its longer side along the length where that is possible.
std::optional<Sheet> bestOf(const MediaSize& media, double ratio) {
    if (media.width == 0) return std::nullopt;
    if (!media.variable()) return media.length == 0 ? std::nullopt : std::optional(Sheet{media, media.length});
    if (media.longest < shortestVariable) return std::nullopt;
    const double length = media.width * std::max(ratio, 1 / ratio);
    return Sheet{media, static_cast<uint32_t>(std::clamp<double>(length, shortestVariable, media.longest))};
}

/// How far the proportions of sheet and picture differ when the picture is turned the better way: 0 for equal.
double mismatch(const Sheet& sheet, double ratio) {
    const double sheetRatio = static_cast<double>(sheet.width()) / sheet.length;
    return std::abs(std::abs(std::log(sheetRatio)) - std::abs(std::log(ratio)));
}

}  // namespace

std::optional<WantedSize> parseSize(const std::string& text) {
    std::string_view rest = text;
    const auto width = takeNumber(rest);
    if (width && rest.starts_with(" inch (") && rest.ends_with(" mm long"))
        return WantedSize{*width, 0, WantedSize::Unit::inch, text};
    takeBlanks(rest);
    if (!width || !takeTimes(rest)) return std::nullopt;
    takeBlanks(rest);
    const auto length = takeNumber(rest);
    takeBlanks(rest);
    if (length && rest.starts_with("inch (")) rest = "in";  // the whole name that the printer's list has
    const auto unit = unitOf(rest);
    if (!length || !unit) return std::nullopt;
    return WantedSize{*width, *length, *unit, text};
}

std::optional<Sheet> findSheet(const std::vector<MediaSize>& offered, const WantedSize& wanted, double ratio) {
    const auto named = std::ranges::find(offered, wanted.name, nameOf);
    if (named != offered.end()) return bestOf(*named, ratio);
    const auto find = [&](uint32_t within) -> std::optional<Sheet> {
        for (const auto& [width, length] : readings(wanted))
            for (const MediaSize& media : offered)
                if (const auto sheet = match(media, width, length, within)) return sheet;
        return std::nullopt;
    };
    const auto exact = find(tolerance);
    return exact || wanted.unit != WantedSize::Unit::centimetre ? exact : find(toleranceOfCentimetres);
}

std::optional<Sheet> suitableSheet(const std::vector<MediaSize>& offered, double ratio) {
    const auto worse = [ratio](const Sheet& a, const Sheet& b) {
        const double difference = mismatch(a, ratio) - mismatch(b, ratio);
        return std::abs(difference) > noticeable ? difference > 0 : a.media.variable() && !b.media.variable();
    };
    std::optional<Sheet> best;
    for (const MediaSize& media : offered) {
        const auto sheet = bestOf(media, ratio);
        if (sheet && (!best || worse(*best, *sheet))) best = sheet;
    }
    return best;
}

Sheet sheetOf(const WantedSize& wanted) {
    constexpr double longestInInches = 30;
    const bool inches = wanted.unit != WantedSize::Unit::either ||
                        (wanted.width < longestInInches && wanted.length < longestInInches);
    const auto sizes = readings(wanted);
    const auto [width, length] = inches ? sizes.front() : sizes[sizes.size() - 2];
    MediaSize media{};
    media.code = exactSize;
    media.width = static_cast<uint32_t>(std::lround(width));
    media.length = static_cast<uint32_t>(std::lround(length));
    return {media, media.length};
}

uint32_t dotsOf(uint32_t hundredths) {
    return static_cast<uint32_t>(std::lround(hundredths * double{ZPRUSB_DOTS_PER_INCH} / hundredthsPerInch));
}

}  // namespace tool
