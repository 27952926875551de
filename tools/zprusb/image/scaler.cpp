#include "scaler.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "srgb.h"

namespace tool {
namespace {

constexpr float steps = 65535;  // of linear light that are told apart

/// The curve of sRGB, from bytes to linear light and back.
struct Curve {
    std::array<float, 256> light;
    std::array<uint8_t, 65536> bytes;

    Curve() {
        size_t from = 0;
        for (unsigned value = 0; value < 256; ++value) {
            light[value] = static_cast<float>(lightOfSrgb(value / 255.0));
            const double end = value == 255 ? 1 : lightOfSrgb((value + 0.5) / 255);
            const auto to = static_cast<size_t>(std::lround(end * steps)) + (value == 255 ? 1 : 0);
            std::fill(bytes.begin() + static_cast<ptrdiff_t>(from), bytes.begin() + static_cast<ptrdiff_t>(to),
                      static_cast<uint8_t>(value));
            from = to;
        }
    }
};

const Curve& curve() {
    static const Curve made;
    return made;
}

/// The filter reaches two pixels to each side, of the picture or of the result, whichever are larger.
constexpr double reach = 2;

double share(double distance) {
    const double x = std::abs(distance);
    if (x < 1) return 1 - x * x * (2.5 - 1.5 * x);
    if (x < reach) return 2 - x * (4 + x * (0.5 * x - 2.5));
    return 0;
}

double scaleOf(const Stretch& stretch) {
    return stretch.dots / stretch.length;
}

/// In pixels of the picture.
double centreOf(const Stretch& stretch, uint32_t dot) {
    return stretch.start + (dot + 0.5) / scaleOf(stretch);
}

double reachOf(const Stretch& stretch) {
    return reach * std::max(1.0, 1 / scaleOf(stretch));
}

double shareOf(const Stretch& stretch, uint32_t pixel, uint32_t dot) {
    return share((pixel + 0.5 - centreOf(stretch, dot)) * std::min(1.0, scaleOf(stretch)));
}

uint32_t within(double value, uint32_t limit) {
    return static_cast<uint32_t>(std::clamp(value, 0.0, static_cast<double>(limit)));
}

/// The first pixel that a dot is made of, and the one behind the last.
uint32_t firstPixel(const Stretch& stretch, uint32_t dot, uint32_t limit) {
    return within(std::floor(centreOf(stretch, dot) - reachOf(stretch) + 0.5), limit - 1);
}

uint32_t endPixel(const Stretch& stretch, uint32_t dot, uint32_t limit) {
    const double end = std::ceil(centreOf(stretch, dot) + reachOf(stretch) - 0.5);
    return std::max(within(end, limit), firstPixel(stretch, dot, limit) + 1);
}

}  // namespace

Scaler::Scaler(Extent source, const Stretch& across, const Stretch& down, unsigned channels, Sink sink)
    : source_(source), channels_(channels), sink_(std::move(sink)), down_(down) {
    planColumns(across);
    light_.resize(endColumn_ - firstColumn_);
    scaled_.resize(across.dots);
    const double active = 2 * reach * std::max(1.0, scaleOf(down)) + 2;
    sums_.resize(std::min(static_cast<uint32_t>(active), down.dots));
    finished_.resize(size_t{across.dots} * channels);
}

void Scaler::planColumns(const Stretch& across) {
    firstColumn_ = firstPixel(across, 0, source_.width);
    endColumn_ = endPixel(across, across.dots - 1, source_.width);
    columns_.reserve(across.dots);
    for (uint32_t dot = 0; dot < across.dots; ++dot) {
        const uint32_t first = firstPixel(across, dot, source_.width);
        const uint32_t end = endPixel(across, dot, source_.width);
        columns_.push_back({first - firstColumn_, end - first, shares_.size()});
        double sum = 0;
        for (uint32_t pixel = first; pixel < end; ++pixel) sum += shareOf(across, pixel, dot);
        for (uint32_t pixel = first; pixel < end; ++pixel)
            shares_.push_back(static_cast<float>(shareOf(across, pixel, dot) / sum));
    }
}

void Scaler::scaleAcross(const uint8_t* row) {
    const std::array<float, 256>& light = curve().light;
    const uint8_t* bytes = row + size_t{firstColumn_} * channels_;
    for (LinearPixel& pixel : light_) {
        pixel = LinearPixel{light[bytes[0]], light[bytes[1]], light[bytes[2]],
                            channels_ == 4 ? light[bytes[3]] : 0};
        bytes += channels_;
    }
    for (size_t dot = 0; dot < columns_.size(); ++dot) {
        const LinearPixel* pixel = light_.data() + columns_[dot].first;
        const float* part = shares_.data() + columns_[dot].shares;
        LinearPixel sum{};
        for (uint32_t i = 0; i < columns_[dot].count; ++i) sum += part[i] * pixel[i];
        scaled_[dot] = sum;
    }
}

void Scaler::addTo(Sum& sum, float share) {
    sum.pixels.resize(scaled_.size());
    sum.shares += share;
    for (size_t i = 0; i < scaled_.size(); ++i) sum.pixels[i] += share * scaled_[i];
}

void Scaler::finish(Sum& sum, uint32_t number) {
    using Whole __attribute__((vector_size(16))) = int32_t;
    const std::array<uint8_t, 65536>& bytes = curve().bytes;
    const float factor = steps / sum.shares;
    uint8_t* to = finished_.data();
    for (const LinearPixel& pixel : sum.pixels) {
        const LinearPixel lifted = pixel * factor + 0.5f;
        const LinearPixel positive = lifted > 0.0f ? lifted : LinearPixel{};
        const LinearPixel bounded = positive < steps ? positive : LinearPixel{} + steps;
        const Whole place = __builtin_convertvector(bounded, Whole);
        for (unsigned i = 0; i < channels_; ++i) *to++ = bytes[static_cast<size_t>(place[i])];
    }
    sink_(number, finished_.data());
    std::ranges::fill(sum.pixels, LinearPixel{});
    sum.shares = 0;
}

void Scaler::add(const uint8_t* row) {
    const uint32_t number = next_++;
    bool scaled = false;
    for (uint32_t dot = done_; dot < down_.dots && firstPixel(down_, dot, source_.height) <= number; ++dot) {
        if (!scaled) scaleAcross(row);
        scaled = true;
        addTo(sums_[dot % sums_.size()], static_cast<float>(shareOf(down_, number, dot)));
    }
    for (; done_ < down_.dots && endPixel(down_, done_, source_.height) <= number + 1; ++done_)
        finish(sums_[done_ % sums_.size()], done_);
}

}  // namespace tool
