#include "view.h"

#include <algorithm>
#include <cstdio>

#include "text.h"

namespace tool {
namespace {

constexpr double inchesPerHundredth = 1 / hundredthsPerInch;
constexpr size_t sizeColumn = 44;

std::string hexadecimal(uint8_t byte) {
    return "0x" + hexOf({&byte, 1}, "");
}

Json dataOf(const MediaSize& media) {
    return {{"code", media.code},
            {"width", media.width},
            {"length", media.length},
            {"variable", media.variable()},
            {"longest", media.longest},
            {"sectionWidth", media.sectionWidth},
            {"sectionLengths", media.sectionLengths}};
}

std::string lineOf(const MediaSize& media) {
    return "  " + padded(nameOf(media), sizeColumn) + "  code " + hexadecimal(media.code) + "\n";
}

std::string lineOf(const FirmwareComponent& component) {
    std::string line = "  " + std::to_string(component.number) + ":";
    for (const std::string& text : component.texts) line += "  " + text;
    for (const uint32_t value : component.values) line += "  " + std::to_string(value);
    return line + "\n";
}

void print(const View& view, bool json, int indentation) {
    // Texts of a printer may hold anything; what isn't UTF-8 must not end the program.
    const std::string text =
        json ? view.data.dump(indentation, ' ', false, Json::error_handler_t::replace) + "\n" : view.text;
    std::fputs(text.c_str(), stdout);
}

}  // namespace

std::string nameOf(const MediaSize& media) {
    if (!media.variable()) return sizeName(media.width, media.length);
    return decimal(media.width * inchesPerHundredth) + " inch (" + decimal(media.width / 100.0) +
           " mm) wide, up to " + decimal(media.longest / 100.0) + " mm long";
}

std::string sizeName(uint32_t width, uint32_t length) {
    return decimal(width * inchesPerHundredth) + " x " + decimal(length * inchesPerHundredth) + " inch (" +
           decimal(width / 100.0) + " x " + decimal(length / 100.0) + " mm)";
}

View viewOf(const std::vector<MediaSize>& list) {
    View view{Json::array(), ""};
    for (const MediaSize& media : list) {
        view.data.push_back(dataOf(media));
        view.text += lineOf(media);
    }
    return view;
}

View viewOf(const std::vector<FirmwareComponent>& components) {
    View view{Json::array(), ""};
    for (const FirmwareComponent& component : components) {
        view.data.push_back(
            {{"component", component.number}, {"texts", component.texts}, {"values", component.values}});
        view.text += lineOf(component);
    }
    return view;
}

View viewOf(const Counters& counters) {
    View view{counters.values, ""};
    for (size_t i = 0; i < counters.values.size(); ++i)
        view.text += "  counter " + std::to_string(i) + (i == 0 ? " (permanent): " : ": ") +
                     std::to_string(counters.values[i]) + "\n";
    return view;
}

View viewOf(const DeviceError& error) {
    const std::string numbers =
        "  group " + std::to_string(error.group) + ", detail " + std::to_string(error.detail) + "\n";
    return {{{"group", error.group}, {"detail", error.detail}}, error.group == 0 ? "  none\n" : numbers};
}

View viewOf(const StatusBytes& status) {
    std::string text = "  last job " + std::to_string(status.jobNumber) + "\n  flags " +
                       hexadecimal(status.flags[0]) + " and " + hexadecimal(status.flags[1]) + "\n  values";
    for (const uint32_t value : status.values) text += " " + std::to_string(value);
    text += "\n  bytes " + hexOf(status.bytes, " ") + "\n";
    return {{{"jobNumber", status.jobNumber},
             {"flags", status.flags},
             {"values", status.values},
             {"bytes", hexOf(status.bytes, "")}},
            text};
}

View viewOf(const UniqueString& string) {
    return {string.text, "  " + string.text + "\n"};
}

View viewOf(const Maintenance& maintenance) {
    return {{{"memory", hexOf(maintenance.memory, "")}, {"data", hexOf(maintenance.data, "")}},
            "  memory " + hexOf(maintenance.memory, " ") + "\n  data   " + hexOf(maintenance.data, " ") + "\n"};
}

View viewOf(const Bytes& bytes) {
    View view{hexOf(bytes, ""), ""};
    constexpr size_t lineSize = 16;
    for (size_t at = 0; at < bytes.size(); at += lineSize)
        view.text +=
            "  " + hexOf(ByteView(bytes).subspan(at, std::min(lineSize, bytes.size() - at)), " ") + "\n";
    return view;
}

void show(const View& view, bool json) {
    print(view, json, 2);
}

bool showLine(const View& view, bool json) {
    print(view, json, -1);
    return std::fflush(stdout) == 0;
}

}  // namespace tool
