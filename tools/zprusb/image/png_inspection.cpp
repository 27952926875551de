#include <zlib.h>

#include <array>

#include "exif.h"
#include "fields.h"
#include "icc.h"
#include "inspection.h"

namespace tool {
namespace {

constexpr size_t signatureSize = 8;
constexpr double gammaUnits = 100'000;  // of numbers in the chunks gAMA and cHRM

/// @return what is compressed at the end of a chunk; empty when it is damaged or too long to be a profile.
Bytes inflated(ByteView compressed) {
    constexpr size_t longestProfile = 4 << 20;
    Bytes content(longestProfile);
    uLongf size = longestProfile;
    const bool whole =
        uncompress(content.data(), &size, compressed.data(), static_cast<uLong>(compressed.size())) == Z_OK;
    content.resize(whole ? size : 0);
    return content;
}

/// Walks the chunks of a file.
class PngInspector {
public:
    explicit PngInspector(ByteView file) : file_(file) {}

    Inspection inspected() {
        size_t at = signatureSize;
        for (ByteView head; !ended_ && !(head = field(file_, at, 8)).empty();) {
            const size_t length = bigEndian(head.first(4));
            const ByteView chunk = field(file_, at + 4, 4 + length), sum = field(file_, at + 8 + length, 4);
            if (sum.empty()) break;
            take(chunk.first(4), chunk.subspan(4),
                 bigEndian(sum) == crc32(0, chunk.data(), static_cast<uInt>(chunk.size())));
            at += 12 + length;
        }
        if (!ended_) found_.damage = cutOff;
        // The chunks are in the order in which they count.
        if (found_.profile.empty() && !isStandard_ && gamma_ != 0)
            found_.profile = profileOf(gamma_, chromaticities_);
        return found_;
    }

private:
    void take(ByteView name, ByteView data, bool intact) {
        if (!intact) found_.damage = "is damaged: a checksum does not match.";
        if (startsWith(name, "IHDR"))
            found_.size = {bigEndian(field(data, 0, 4)), bigEndian(field(data, 4, 4))};
        if (startsWith(name, "IEND")) ended_ = true;
        if (startsWith(name, "eXIf")) found_.turn = turnOfExif(data);
        if (!intact) return;
        if (startsWith(name, "sRGB")) isStandard_ = true;
        if (startsWith(name, "gAMA") && data.size() == 4) gamma_ = bigEndian(data) / gammaUnits;
        if (startsWith(name, "cHRM") && data.size() == 32) takeChromaticities(data);
        if (startsWith(name, "iCCP")) takeProfile(data);
    }

    void takeChromaticities(ByteView data) {
        for (size_t i = 0; i < chromaticities_.size(); ++i)
            chromaticities_[i] = bigEndian(data.subspan(4 * i, 4)) / gammaUnits;
    }

    void takeProfile(ByteView data) {
        const size_t name = static_cast<size_t>(std::ranges::find(data, 0) - data.begin());
        const ByteView compressed = name + 2 < data.size() ? data.subspan(name + 2) : ByteView{};
        found_.profile = inflated(compressed);
        if (found_.profile.empty()) found_.damage = badProfile;
    }

    ByteView file_;
    bool ended_ = false;
    bool isStandard_ = false;
    double gamma_ = 0;
    Chromaticities chromaticities_ = chromaticitiesOfSrgb;
    Inspection found_{.kind = Inspection::Kind::png};
};

}  // namespace

Inspection inspectPng(ByteView file) {
    return PngInspector(file).inspected();
}

}  // namespace tool
