#include "info_kinds.h"

#include <zprusb.h>

#include <algorithm>
#include <cctype>

namespace tool {
namespace {

/// The function that decodes the record of a tag.
template <uint16_t tag>
constexpr auto decoder = nullptr;
template <>
constexpr auto decoder<ZPRUSB_INFO_MEDIA> = decodeMediaList;
template <>
constexpr auto decoder<ZPRUSB_INFO_FIRMWARE> = decodeFirmware;
template <>
constexpr auto decoder<ZPRUSB_INFO_COUNTERS> = decodeCounters;
template <>
constexpr auto decoder<ZPRUSB_INFO_DEVICE_ERROR> = decodeDeviceError;
template <>
constexpr auto decoder<ZPRUSB_INFO_STATUS_BYTES> = decodeStatusBytes;
template <>
constexpr auto decoder<ZPRUSB_INFO_UNIQUE_STRING> = decodeUniqueString;
template <>
constexpr auto decoder<ZPRUSB_INFO_MAINTENANCE> = decodeMaintenance;
template <>
constexpr auto decoder<ZPRUSB_INFO_ERROR_LOG> = decodeErrorLog;

template <uint16_t tag>
View decodedView(ByteView record) {
    return viewOf(decoder<tag>(record));
}

/// DEVICE_ERROR becomes device-error.
std::string wordOf(std::string name) {
    std::ranges::transform(name, name.begin(),
                           [](unsigned char c) { return static_cast<char>(c == '_' ? '-' : std::tolower(c)); });
    return name;
}

}  // namespace

std::span<const InfoKind> infoKinds() {
#define ZPRUSB_INFO_KIND(tag, name, size, content) {tag, wordOf(#name), size, content, decodedView<tag>},
    static const InfoKind kinds[] = {ZPRUSB_INFO_TAGS(ZPRUSB_INFO_KIND)};
#undef ZPRUSB_INFO_KIND
    return kinds;
}

const InfoKind& infoKind(uint16_t tag) {
    return *std::ranges::find(infoKinds(), tag, &InfoKind::tag);
}

}  // namespace tool
