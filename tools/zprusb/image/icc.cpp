#include "icc.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "fields.h"
#include "srgb.h"

namespace tool {
namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;  // rows

constexpr Vector whiteOfProfiles = {0.9642, 1, 0.8249};  // D50
constexpr double farthest = 1000;                        // that a number in a profile reaches
// From tristimulus values to the responses of the eye's cones, in which white is adapted (Bradford).
constexpr Matrix cones = {{{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};

Vector operator*(const Matrix& matrix, const Vector& vector) {
    Vector result{};
    for (size_t row = 0; row < 3; ++row)
        for (size_t i = 0; i < 3; ++i) result[row] += matrix[row][i] * vector[i];
    return result;
}

double determinant(const Vector& a, const Vector& b, const Vector& c) {
    return a[0] * (b[1] * c[2] - b[2] * c[1]) - b[0] * (a[1] * c[2] - a[2] * c[1]) +
           c[0] * (a[1] * b[2] - a[2] * b[1]);
}

/// The weights with which three vectors make up another one.
std::optional<Vector> weightsOf(const Vector& a, const Vector& b, const Vector& c, const Vector& sum) {
    const double all = determinant(a, b, c);
    if (std::abs(all) < 1e-9) return std::nullopt;
    return Vector{determinant(sum, b, c) / all, determinant(a, sum, c) / all, determinant(a, b, sum) / all};
}

/// With a brightness of 1.
Vector tristimulus(double x, double y) {
    return {x / y, 1, (1 - x - y) / y};
}

/// What a colour seen beside one white becomes beside the profiles'.
std::optional<Vector> adapted(const Vector& colour, const Vector& white) {
    const Vector from = cones * white, to = cones * whiteOfProfiles;
    Vector response = cones * colour;
    for (size_t i = 0; i < 3; ++i) response[i] *= to[i] / from[i];
    const auto column = [](size_t i) { return Vector{cones[0][i], cones[1][i], cones[2][i]}; };
    return weightsOf(column(0), column(1), column(2), response);
}

/// The tristimulus values of full red, green and blue, beside the profiles' white.
std::optional<Matrix> primariesOf(const Chromaticities& c) {
    for (size_t i = 0; i < c.size(); i += 2)
        if (c[i + 1] < 1e-4) return std::nullopt;
    const Vector white = tristimulus(c[0], c[1]);
    Matrix primaries{};
    for (size_t i = 0; i < 3; ++i) primaries[i] = tristimulus(c[2 * i + 2], c[2 * i + 3]);
    const auto weights = weightsOf(primaries[0], primaries[1], primaries[2], white);
    if (!weights) return std::nullopt;
    for (size_t i = 0; i < 3; ++i) {
        for (double& value : primaries[i]) value *= (*weights)[i];
        const auto seen = adapted(primaries[i], white);
        if (!seen || std::ranges::any_of(*seen, [](double value) { return std::abs(value) > farthest; }))
            return std::nullopt;
        primaries[i] = *seen;
    }
    return primaries;
}

class ProfileWriter {
public:
    void text(std::string_view characters) {
        bytes_.insert(bytes_.end(), characters.begin(), characters.end());
    }

    void number(uint32_t value, size_t size = 4) {
        for (size_t i = size; i-- > 0;) bytes_.push_back(static_cast<uint8_t>(value >> 8 * i));
    }

    void fixed(double value) {
        number(static_cast<uint32_t>(static_cast<int32_t>(std::lround(value * 65536))));
    }

    void colour(const Vector& values) {
        text("XYZ ");
        number(0);
        for (const double value : values) fixed(value);
    }

    void fill(size_t size) { bytes_.resize(size); }
    Bytes take() { return std::move(bytes_); }

private:
    Bytes bytes_;
};

constexpr uint32_t headerSize = 128, colourSize = 20, curveHead = 12;
constexpr std::string_view tags[] = {"wtpt", "rXYZ", "gXYZ", "bXYZ", "rTRC", "gTRC", "bTRC"};
constexpr uint32_t colourTags = 4;
constexpr uint32_t dataStart = headerSize + 4 + 12 * std::size(tags);

void writeHeader(ProfileWriter& profile, uint32_t size) {
    profile.number(size);
    profile.number(0);
    profile.number(0x02400000);  // version
    profile.text("mntrRGB XYZ ");
    profile.fill(36);
    profile.text("acsp");
    profile.fill(68);
    for (const double value : whiteOfProfiles) profile.fixed(value);
    profile.fill(headerSize);
}

void writeTags(ProfileWriter& profile, uint32_t curveSize) {
    profile.number(std::size(tags));
    for (uint32_t i = 0; i < std::size(tags); ++i) {
        profile.text(tags[i]);
        profile.number(dataStart + std::min(i, colourTags) * colourSize);  // all share the curve
        profile.number(i < colourTags ? colourSize : curveSize);
    }
}

/// @param curve the light of values from 0 to 65535; a single one is the power to which they are raised, in
/// 1/256.
Bytes written(const Matrix& primaries, const std::vector<uint16_t>& curve) {
    const auto curveSize = static_cast<uint32_t>(curveHead + 2 * curve.size());
    const uint32_t size = (dataStart + colourTags * colourSize + curveSize + 3) / 4 * 4;
    ProfileWriter profile;
    writeHeader(profile, size);
    writeTags(profile, curveSize);
    profile.colour(whiteOfProfiles);
    for (const Vector& primary : primaries) profile.colour(primary);
    profile.text("curv");
    profile.number(0);
    profile.number(static_cast<uint32_t>(curve.size()));
    for (const uint16_t value : curve) profile.number(value, 2);
    profile.fill(size);
    return profile.take();
}

bool isSrgb(double gamma, const Chromaticities& chromaticities) {
    constexpr double gammaOfSrgb = 0.45455;
    return std::abs(gamma - gammaOfSrgb) < 0.001 &&
           std::ranges::equal(chromaticities, chromaticitiesOfSrgb,
                              [](double a, double b) { return std::abs(a - b) < 0.002; });
}

}  // namespace

Bytes profileOf(double gamma, const Chromaticities& chromaticities) {
    constexpr double smallest = 0.01, largest = 100;  // that a profile can tell
    const auto primaries = primariesOf(chromaticities);
    if (!primaries || gamma < smallest || gamma > largest || isSrgb(gamma, chromaticities)) return {};
    return written(*primaries, {static_cast<uint16_t>(std::lround(256 / gamma))});
}

Bytes profileOfSrgb() {
    constexpr size_t steps = 4096;
    std::vector<uint16_t> curve(steps);
    for (size_t i = 0; i < steps; ++i)
        curve[i] =
            static_cast<uint16_t>(std::lround(65535 * lightOfSrgb(static_cast<double>(i) / (steps - 1))));
    return written(*primariesOf(chromaticitiesOfSrgb), curve);
}

bool isProfileFor(std::string_view colourSpace, ByteView profile) {
    return startsWith(field(profile, 16, 4), colourSpace) && startsWith(field(profile, 36, 4), "acsp");
}

}  // namespace tool
