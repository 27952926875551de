#include "info_records.h"

#include <algorithm>

namespace tool {
namespace {

MediaSize decodeMedia(ByteView entry) {
    MediaSize media{.code = entry[0],
                    .width = littleEndian(entry.subspan(1, 4)),
                    .length = littleEndian(entry.subspan(5, 4)),
                    .longest = littleEndian(entry.subspan(11, 4)),
                    .sectionWidth = littleEndian(entry.subspan(15, 4)),
                    .sectionLengths = {}};
    for (size_t i = 0; i < media.sectionLengths.size(); ++i)
        media.sectionLengths[i] = littleEndian(entry.subspan(19 + 2 * i, 2));
    const bool defaulted =
        ZPRUSB_FIRST_DEFAULTED_CODE <= media.code && media.code <= ZPRUSB_LAST_DEFAULTED_CODE;
    if (defaulted && media.longest == 0) media.longest = ZPRUSB_DEFAULT_LONGEST_LENGTH;
    return media;
}

FirmwareComponent decodeComponent(unsigned number, ByteView entry) {
    return {number,
            {textOf(entry.subspan(0, 8)), textOf(entry.subspan(8, 16)), textOf(entry.subspan(24, 10))},
            {entry[34], entry[35], littleEndian(entry.subspan(36, 2))}};
}

Bytes copyOf(ByteView bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace

std::vector<MediaSize> decodeMediaList(ByteView record) {
    std::vector<MediaSize> list;
    if (record.empty()) return list;
    const size_t room = (record.size() - 1) / ZPRUSB_MEDIA_ENTRY_SIZE;
    const size_t count = std::min<size_t>(record[0], room);
    for (size_t i = 0; i < count; ++i)
        list.push_back(decodeMedia(record.subspan(1 + i * ZPRUSB_MEDIA_ENTRY_SIZE, ZPRUSB_MEDIA_ENTRY_SIZE)));
    return list;
}

std::vector<FirmwareComponent> decodeFirmware(ByteView record) {
    const size_t room = (record.size() - 1) / ZPRUSB_FIRMWARE_ENTRY_SIZE;
    const size_t count = std::min<size_t>(record[0], room);
    std::vector<FirmwareComponent> components;
    for (size_t i = 0; i < count; ++i)
        components.push_back(
            decodeComponent(static_cast<unsigned>(i + 1),
                            record.subspan(1 + i * ZPRUSB_FIRMWARE_ENTRY_SIZE, ZPRUSB_FIRMWARE_ENTRY_SIZE)));
    return components;
}

Counters decodeCounters(ByteView record) {
    Counters counters{};
    for (size_t i = 0; i < counters.values.size(); ++i)
        counters.values[i] = littleEndian(record.subspan(4 * i, 4));
    return counters;
}

DeviceError decodeDeviceError(ByteView record) {
    return {record[0], record[1]};
}

StatusBytes decodeStatusBytes(ByteView record) {
    return {record[0],
            copyOf(record.first(8)),
            {record[8], record[15]},
            {littleEndian(record.subspan(9, 2)), littleEndian(record.subspan(11, 2)),
             littleEndian(record.subspan(13, 2))}};
}

UniqueString decodeUniqueString(ByteView record) {
    return {textOf(record)};
}

Maintenance decodeMaintenance(ByteView record) {
    return {copyOf(record.first(8)), copyOf(record.subspan(8))};
}

Bytes decodeErrorLog(ByteView record) {
    return copyOf(record);
}

}  // namespace tool
