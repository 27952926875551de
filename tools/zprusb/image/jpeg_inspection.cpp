#include <algorithm>
#include <map>

#include "exif.h"
#include "fields.h"
#include "inspection.h"

namespace tool {
namespace {

enum Marker : uint8_t {
    firstFrame = 0xC0,
    huffmanTables = 0xC4,
    lastFrame = 0xCF,
    firstRestart = 0xD0,
    lastRestart = 0xD7,
    startOfImage = 0xD8,
    endOfImage = 0xD9,
    startOfScan = 0xDA,
    application1 = 0xE1,
    application2 = 0xE2,
    application14 = 0xEE,
    filler = 0xFF,
};

constexpr std::string_view exifSignature("Exif\0\0", 6);
constexpr std::string_view transformSignature("Adobe");
constexpr size_t transformPlace = 11;
constexpr std::string_view profileSignature("ICC_PROFILE\0", 12);

/// Markers without a length behind them; zero stands for a byte of the picture that looks like a marker's
/// start.
bool standsAlone(uint8_t marker) {
    return marker == 0 || (marker >= firstRestart && marker <= startOfImage);
}

bool isFrame(uint8_t marker) {
    constexpr uint8_t arithmeticTables = 0xCC, extension = 0xC8;
    return marker >= firstFrame && marker <= lastFrame && marker != huffmanTables && marker != extension &&
           marker != arithmeticTables;
}

/// A profile comes in numbered parts, each of which says how many there are.
class ProfileParts {
public:
    void add(ByteView segment) {
        const ByteView numbers = field(segment, profileSignature.size(), 2);
        if (numbers.empty()) return;
        damaged_ |= numbers[0] == 0 || numbers[0] > numbers[1] || (count_ != 0 && count_ != numbers[1]);
        count_ = numbers[1];
        damaged_ |= !parts_.emplace(numbers[0], segment.subspan(profileSignature.size() + 2)).second;
    }

    bool areDamaged() const { return damaged_ || parts_.size() != count_; }

    Bytes joined() const {
        Bytes profile;
        for (const auto& [number, part] : parts_) profile.insert(profile.end(), part.begin(), part.end());
        return profile;
    }

private:
    std::map<uint8_t, ByteView> parts_;
    size_t count_ = 0;
    bool damaged_ = false;
};

/// Walks the markers of a file.
class JpegInspector {
public:
    explicit JpegInspector(ByteView file) : file_(file) {}

    Inspection inspected() {
        while (!ended_ && findMarker()) takeMarker(file_[at_++]);
        if (profile_.areDamaged()) {
            found_.damage = badProfile;
        } else {
            found_.profile = profile_.joined();
        }
        found_.isUntransformed = components_ > 1 && transform_.value_or(components_ == 4 ? 0 : 1) == 0;
        if (!ended_) found_.damage = cutOff;
        return found_;
    }

private:
    /// Goes to the next marker, wherever it is: behind a scan there is its data.
    bool findMarker() {
        const auto isFiller = [](uint8_t byte) { return byte == filler; };
        auto byte = std::find_if(file_.begin() + static_cast<ptrdiff_t>(at_), file_.end(), isFiller);
        byte = std::find_if_not(byte, file_.end(), isFiller);
        at_ = static_cast<size_t>(byte - file_.begin());
        return byte != file_.end();
    }

    void takeMarker(uint8_t marker) {
        if (standsAlone(marker)) return;
        if (marker == endOfImage) {
            ended_ = true;
            return;
        }
        const size_t length = bigEndian(field(file_, at_, 2));  // counts its own two bytes
        if (length < 2) return;
        const ByteView segment = field(file_, at_ + 2, length - 2);
        at_ = std::min(at_ + length, file_.size());
        if (marker == startOfScan) ++found_.scans;
        if (isFrame(marker)) takeFrame(segment);
        if (marker == application1 && startsWith(segment, exifSignature))
            found_.turn = turnOfExif(segment.subspan(exifSignature.size()));
        if (marker == application14 && startsWith(segment, transformSignature))
            transform_ = bigEndian(field(segment, transformPlace, 1));
        if (marker == application2 && startsWith(segment, profileSignature)) profile_.add(segment);
    }

    void takeFrame(ByteView segment) {
        if (found_.size.width != 0) return;
        found_.size = {bigEndian(field(segment, 3, 2)), bigEndian(field(segment, 1, 2))};
        components_ = bigEndian(field(segment, 5, 1));
    }

    ByteView file_;
    size_t at_ = 0;
    bool ended_ = false;
    uint32_t components_ = 0;
    std::optional<uint32_t> transform_;
    ProfileParts profile_;
    Inspection found_{.kind = Inspection::Kind::jpeg};
};

}  // namespace

Inspection inspectJpeg(ByteView file) {
    return JpegInspector(file).inspected();
}

}  // namespace tool
