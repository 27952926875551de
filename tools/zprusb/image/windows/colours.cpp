#include "colours.h"

#include <windows.h>

#include <icm.h>

#include <vector>

#include "icc.h"

namespace tool {
namespace {

constexpr unsigned spread = 257;  // from 8 to 16 bits

class Profile {
public:
    explicit Profile(Bytes bytes) : bytes_(std::move(bytes)) {
        PROFILE profile{PROFILE_MEMBUFFER, bytes_.data(), static_cast<DWORD>(bytes_.size())};
        handle_ = OpenColorProfileW(&profile, PROFILE_READ, FILE_SHARE_READ, OPEN_EXISTING);
        if (handle_ == nullptr) throw UnusableProfile("has a damaged colour profile.");
    }
    ~Profile() { CloseColorProfile(handle_); }
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;

    HPROFILE handle() const { return handle_; }

    COLORTYPE colours(Decoder::Model model) const {
        if (model == Decoder::Model::cmyk && isProfileFor("CMYK", bytes_)) return COLOR_CMYK;
        if (model == Decoder::Model::rgb && isProfileFor("RGB ", bytes_)) return COLOR_RGB;
        if (model == Decoder::Model::rgb && isProfileFor("GRAY", bytes_)) return COLOR_GRAY;
        throw UnusableProfile("has a colour profile for other colours than its own.");
    }

private:
    Bytes bytes_;
    HPROFILE handle_;
};

WORD wide(uint8_t value) {
    return static_cast<WORD>(value * spread);
}

uint8_t narrow(WORD value) {
    return static_cast<uint8_t>((value + spread / 2) / spread);
}

COLOR colourOf(const uint8_t* pixel, COLORTYPE type) {
    COLOR colour{};
    switch (type) {
        case COLOR_GRAY:
            colour.gray.gray = wide(pixel[0]);
            break;
        case COLOR_CMYK:
            colour.cmyk = {wide(255 - pixel[0]), wide(255 - pixel[1]), wide(255 - pixel[2]),
                           wide(255 - pixel[3])};
            break;
        default:
            colour.rgb = {wide(pixel[0]), wide(pixel[1]), wide(pixel[2])};
    }
    return colour;
}

/// The system's colour management has no black point compensation.
class SystemConversion : public ColourConversion {
public:
    SystemConversion(const Profile& from, const Profile& to, Decoder::Model model, Intent intent)
        : type_(from.colours(model)), size_(model == Decoder::Model::cmyk ? 4 : 3) {
        HPROFILE profiles[] = {from.handle(), to.handle()};
        DWORD intents[] = {static_cast<DWORD>(intent), static_cast<DWORD>(intent)};
        transform_ = CreateMultiProfileTransform(profiles, 2, intents, 2, BEST_MODE, INDEX_DONT_CARE);
        if (transform_ == nullptr) throw UnusableProfile("has a colour profile that can't be used.");
    }
    ~SystemConversion() override { DeleteColorTransform(transform_); }
    SystemConversion(const SystemConversion&) = delete;
    SystemConversion& operator=(const SystemConversion&) = delete;

    void convert(const uint8_t* from, uint8_t* to, uint32_t pixels) const override {
        std::vector<COLOR> colours(pixels);
        for (COLOR& colour : colours) {
            colour = colourOf(from, type_);
            from += size_;
        }
        if (!TranslateColors(transform_, colours.data(), pixels, type_, colours.data(), COLOR_RGB))
            throw UnusableProfile("has a colour profile that the system's colour management can't use.");
        for (const COLOR& colour : colours)
            for (const WORD value : {colour.rgb.red, colour.rgb.green, colour.rgb.blue}) *to++ = narrow(value);
    }

private:
    COLORTYPE type_;
    size_t size_;
    HTRANSFORM transform_;
};

Bytes profileOrSrgb(ByteView profile) {
    return profile.empty() ? profileOfSrgb() : Bytes(profile.begin(), profile.end());
}

}  // namespace

std::unique_ptr<ColourConversion> makeConversion(ByteView from, ByteView to, Decoder::Model model,
                                                 Intent intent) {
    return std::make_unique<SystemConversion>(Profile(profileOrSrgb(from)), Profile(profileOrSrgb(to)), model,
                                              intent);
}

}  // namespace tool
