#include "colours.h"

#include <lcms2.h>

#include "icc.h"

namespace tool {
namespace {

using Profile = std::unique_ptr<void, decltype(&cmsCloseProfile)>;
using Transform = std::unique_ptr<void, decltype(&cmsDeleteTransform)>;

Profile open(ByteView bytes) {
    void* profile = bytes.empty()
                        ? cmsCreate_sRGBProfile()
                        : cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size()));
    if (profile == nullptr) throw UnusableProfile("has a damaged colour profile.");
    return {profile, cmsCloseProfile};
}

/// How the bytes of the decoder's pixels are to be read with a profile; of greys, one of three is enough.
cmsUInt32Number formatOf(ByteView profile, Decoder::Model model) {
    if (model == Decoder::Model::cmyk && isProfileFor("CMYK", profile)) return TYPE_CMYK_8_REV;
    if (model == Decoder::Model::rgb && isProfileFor("GRAY", profile))
        return COLORSPACE_SH(PT_GRAY) | CHANNELS_SH(1) | EXTRA_SH(2) | BYTES_SH(1);
    if (model == Decoder::Model::rgb && (profile.empty() || isProfileFor("RGB ", profile))) return TYPE_RGB_8;
    throw UnusableProfile("has a colour profile for other colours than its own.");
}

constexpr cmsUInt32Number intentOf(Intent intent) {
    constexpr cmsUInt32Number intents[] = {INTENT_PERCEPTUAL, INTENT_RELATIVE_COLORIMETRIC, INTENT_SATURATION,
                                           INTENT_ABSOLUTE_COLORIMETRIC};
    return intents[static_cast<size_t>(intent)];
}

class LittleConversion : public ColourConversion {
public:
    explicit LittleConversion(Transform transform) : transform_(std::move(transform)) {}

    void convert(const uint8_t* from, uint8_t* to, uint32_t pixels) const override {
        cmsDoTransform(transform_.get(), from, to, pixels);
    }

private:
    Transform transform_;
};

}  // namespace

std::unique_ptr<ColourConversion> makeConversion(ByteView from, ByteView to, Decoder::Model model,
                                                 Intent intent) {
    const Profile source = open(from), target = open(to);
    Transform transform(cmsCreateTransform(source.get(), formatOf(from, model), target.get(), TYPE_RGB_8,
                                           intentOf(intent), cmsFLAGS_BLACKPOINTCOMPENSATION),
                        cmsDeleteTransform);
    if (!transform) throw UnusableProfile("has a colour profile that can't be used.");
    return std::make_unique<LittleConversion>(std::move(transform));
}

}  // namespace tool
