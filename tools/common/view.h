/// Two views of the same data: JSON for programs and lines for people.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "info_records.h"

namespace tool {

using Json = nlohmann::ordered_json;

struct View {
    Json data;
    std::string text;  // lines, each with its line end
};

View viewOf(const std::vector<MediaSize>& list);
View viewOf(const std::vector<FirmwareComponent>& components);
View viewOf(const Counters& counters);
View viewOf(const DeviceError& error);
View viewOf(const StatusBytes& status);
View viewOf(const UniqueString& string);
View viewOf(const Maintenance& maintenance);

/// Bytes whose meaning is the printer's, in hexadecimal.
View viewOf(const Bytes& bytes);

/// The name of a size in both units, such as "6 x 4 inch (152.4 x 101.6 mm)". Lengths in 1/100 mm.
std::string sizeName(uint32_t width, uint32_t length);

/// The same for an entry of the media list; of a variable length, the limits.
std::string nameOf(const MediaSize& media);

/// Prints one of the two views on standard output.
void show(const View& view, bool json);

/// The same for one of many: JSON takes a single line, and what is printed leaves the program at once.
/// @return false when nobody takes it any more, which the end of the program tells.
bool showLine(const View& view, bool json);

}  // namespace tool
