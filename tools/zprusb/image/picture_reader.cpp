#include "picture_reader.h"

#include <algorithm>

#include "scaler.h"

namespace tool {
namespace {

constexpr size_t channels = 3;  // of a page
constexpr uint32_t longestSide = 1'000'000;
constexpr unsigned mostScans = 100;  // a progressive picture needs about ten

/// Inks without a profile: each takes its share of the light.
class PlainInks : public ColourConversion {
public:
    /// @param then converts what becomes of them in sRGB; may be none.
    explicit PlainInks(std::unique_ptr<ColourConversion> then) : then_(std::move(then)) {}

    void convert(const uint8_t* from, uint8_t* to, uint32_t pixels) const override {
        Bytes light(pixels * channels);
        uint8_t* target = then_ ? light.data() : to;
        for (uint8_t* rgb = target; rgb != target + light.size(); rgb += channels, from += 4)
            for (size_t i = 0; i < channels; ++i)
                rgb[i] = static_cast<uint8_t>((from[i] * from[3] + 127) / 255);
        if (then_) then_->convert(light.data(), to, pixels);
    }

private:
    std::unique_ptr<ColourConversion> then_;
};

/// Brings the rows of the scaled picture to the page, turned and in the printer's colours.
class Pen {
public:
    /// @param conversion may be none.
    Pen(Picture& page, const Placement& placement, std::unique_ptr<ColourConversion> conversion)
        : conversion_(std::move(conversion)), row_(placement.across.dots * channels) {
        const Turn turn = placement.turn;
        const Extent size = Extent{placement.across.dots, placement.down.dots} * turn;
        constexpr auto dot = static_cast<ptrdiff_t>(channels);
        const ptrdiff_t line = dot * page.width;
        const ptrdiff_t across = turn.mirrorColumns ? -dot : dot, down = turn.mirrorRows ? -line : line;
        start_ = page.pixels.data() + line * (placement.y + (turn.mirrorRows ? size.height - 1 : 0)) +
                 dot * (placement.x + (turn.mirrorColumns ? size.width - 1 : 0));
        dotStep_ = turn.exchangeSides ? down : across;
        rowStep_ = turn.exchangeSides ? across : down;
    }

    void draw(uint32_t number, const uint8_t* row) {
        if (conversion_) conversion_->convert(row, row_.data(), static_cast<uint32_t>(row_.size() / channels));
        const uint8_t* from = conversion_ ? row_.data() : row;
        uint8_t* to = start_ + rowStep_ * static_cast<ptrdiff_t>(number);
        for (const uint8_t* end = from + row_.size(); from != end; from += channels, to += dotStep_)
            for (size_t i = 0; i < channels; ++i) to[i] = from[i];
    }

private:
    std::unique_ptr<ColourConversion> conversion_;
    Bytes row_;
    uint8_t* start_;
    ptrdiff_t dotStep_, rowStep_;
};

/// How much smaller the decoder may make the picture.
unsigned reductionFor(const Placement& placement) {
    const auto spare = [](const Stretch& stretch) { return stretch.length / stretch.dots; };
    const double least = std::min(spare(placement.across), spare(placement.down));
    unsigned reduction = 8;
    while (reduction > 1 && reduction > least) reduction /= 2;
    return reduction;
}

void reduce(Stretch& stretch, unsigned reduction) {
    stretch.start /= reduction;
    stretch.length /= reduction;
}

std::string sizeText(Extent size) {
    return std::to_string(size.width) + " x " + std::to_string(size.height) + " pixels";
}

}  // namespace

PictureReader::PictureReader(std::string name, Bytes file, Reading reading)
    : name_(std::move(name)), file_(std::move(file)), reading_(std::move(reading)) {
    auto inspection = inspect(file_);
    if (!inspection) refuse("is not a PNG or JPEG picture.");
    inspection_ = std::move(*inspection);
    requireBounds();
    if (!inspection_.damage.empty()) refuseDamage(inspection_.damage);
}

void PictureReader::refuse(const std::string& reason) const {
    refuseFile(name_, reason);
}

void PictureReader::refuseDamage(const std::string& reason) const {
    if (!reading_.force) refuse(reason + " With --force, what there is of it is printed.");
}

void PictureReader::requireBounds() const {
    const Extent size = inspection_.size;
    if (size.width == 0 || size.height == 0) refuse("is damaged: its header tells no size.");
    if (uint64_t{size.width} * size.height > reading_.mostPixels)
        refuse("has " + sizeText(size) + "; no more than " + std::to_string(reading_.mostPixels) +
               " are read. Make it smaller first, or raise the limit with --max-pixels.");
    if (std::max(size.width, size.height) > longestSide)
        refuse("has " + sizeText(size) + "; no more than " + std::to_string(longestSide) +
               " are read in one direction.");
    if (inspection_.scans > mostScans)
        refuse("has " + sizeText(size) + " in " + std::to_string(inspection_.scans) + " scans; no more than " +
               std::to_string(mostScans) + " scans are read.");
}

std::unique_ptr<ColourConversion> PictureReader::conversionOf(const Bytes& profile,
                                                              Decoder::Model model) const {
    const Bytes& printer = reading_.printerProfile;
    if (!profile.empty()) return makeConversion(profile, printer, model, reading_.intent);
    auto toPrinter =
        printer.empty() ? nullptr : makeConversion({}, printer, Decoder::Model::rgb, reading_.intent);
    if (model == Decoder::Model::rgb) return toPrinter;
    return std::make_unique<PlainInks>(std::move(toPrinter));
}

std::unique_ptr<ColourConversion> PictureReader::conversionFor(Decoder::Model model) const {
    try {
        return conversionOf(inspection_.profile, model);
    } catch (const UnusableProfile& failure) {
        refuseDamage(failure.what());
        return conversionOf({}, model);
    }
}

void PictureReader::draw(const Placement& placement, Picture& page, uint32_t& rows) const {
    const auto decoder = makeDecoder(file_, inspection_, reading_.force);
    if (decoder->size() != inspection_.size) refuse("is damaged: it tells two sizes.");
    Pen pen(page, placement, conversionFor(decoder->model()));
    const unsigned reduction = decoder->start(reductionFor(placement));
    const auto reduced = [reduction](uint32_t side) { return (side - 1) / reduction + 1; };
    const Extent size{reduced(inspection_.size.width), reduced(inspection_.size.height)};
    Stretch across = placement.across, down = placement.down;
    reduce(across, reduction);
    reduce(down, reduction);
    const unsigned samples = decoder->model() == Decoder::Model::cmyk ? 4 : 3;
    Scaler scaler(size, across, down, samples,
                  [&pen](uint32_t number, const uint8_t* row) { pen.draw(number, row); });
    Bytes row(size_t{size.width} * samples);
    for (; rows < size.height; ++rows) {
        decoder->read(row.data());
        scaler.add(row.data());
    }
    if (!decoder->complaint().empty()) throw DecodingFailure(decoder->complaint());
}

Picture PictureReader::page(Extent dots, const Layout& layout) const {
    Picture page{dots.width, dots.height, Bytes(size_t{dots.width} * dots.height * channels, 0xFF)};
    const auto placement = placementOf(inspection_.size, inspection_.turn, dots, layout);
    uint32_t rows = 0;
    try {
        if (placement) draw(*placement, page, rows);
    } catch (const DecodingFailure& failure) {
        const std::string reason = "is damaged: " + std::string(failure.what()) + ".";
        if (rows == 0) refuse(reason);
        refuseDamage(reason);
    }
    return page;
}

}  // namespace tool
