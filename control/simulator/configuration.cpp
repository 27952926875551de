#include "configuration.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <limits>
#include <set>

#include "commands.h"
#include "json_reader.h"
#include "system.h"

namespace simulator {
namespace {

constexpr uint32_t anyByte = 0xFF;
constexpr uint32_t anyNumber = std::numeric_limits<uint32_t>::max();

// One metre, in 1/100 mm: enough for every page, and its pixels still fit into memory.
constexpr uint32_t longestSize = 100'000;

// What a media answer has room for, as hosts read at most 300 bytes.
constexpr size_t maximumMedia = 8;

uint8_t byteOf(JsonReader& reader, const char* key, std::optional<uint32_t> otherwise = {}) {
    return static_cast<uint8_t>(reader.number(key, 0, anyByte, otherwise));
}

std::vector<uint32_t> numbersOf(JsonReader& reader, const char* key, size_t count, uint32_t most) {
    std::vector<uint32_t> numbers(count, 0);
    const Json* list = reader.list(key, count);
    if (list == nullptr) return numbers;
    for (size_t i = 0; i < list->size(); ++i) {
        const Json& value = (*list)[i];
        if (!value.is_number_unsigned() || value.get<uint64_t>() > most) {
            throw ConfigurationError(reader.placeOf(key, i) + " must be a whole number from 0 to " +
                                     std::to_string(most));
        }
        numbers[i] = value.get<uint32_t>();
    }
    return numbers;
}

MediaSize readMedia(const Json& json, const std::string& place) {
    JsonReader reader(json, place);
    MediaSize media;
    media.code = byteOf(reader, "code");
    media.width = reader.number("width", 1, longestSize);
    media.length = reader.number("length", 0, longestSize, 0);
    if (isExactSize(media.code) && media.length == 0) reader.refuse("length", "is missing");
    media.maximumLength = reader.number("maximumLength", 0, longestSize, 0);
    media.sectionWidth = reader.number("sectionWidth", 0, longestSize, 0);
    const auto lengths = numbersOf(reader, "sectionLengths", media.sectionLengths.size(), 0xFFFF);
    std::ranges::transform(lengths, media.sectionLengths.begin(),
                           [](uint32_t length) { return static_cast<uint16_t>(length); });
    reader.finish();
    return media;
}

// Hosts reserve a printer by its serial among all processes, so printers of several processes have different
// ones.
std::string defaultSerial(size_t index) {
    char printer[8];
    std::snprintf(printer, sizeof printer, "%04u", static_cast<unsigned>(index + 1));
    return std::string(printer) + "P" + std::to_string(processNumber());
}

std::string readSerial(JsonReader& reader, size_t index) {
    const std::string serial = reader.has("serial") ? reader.text("serial") : defaultSerial(index);
    const bool isPlain =
        std::ranges::all_of(serial, [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; });
    if (serial.empty() || serial.size() > 20 || !isPlain)
        reader.refuse("serial", "must be 1 to 20 letters and digits");
    return "SIMULATED" + serial;
}

// The rule for a key that takes one of these names.
std::string oneOf(const auto& named) {
    std::string names;
    for (const auto& each : named) names += (names.empty() ? "" : ", ") + std::string(each.name);
    return "must be one of " + names;
}

Status readCondition(JsonReader& reader) {
    const std::string name = reader.text("condition", "ready");
    const auto status = statusOf(name, byteOf(reader, "errorGroup", 0), byteOf(reader, "errorDetail", 0));
    if (!status) reader.refuse("condition", oneOf(conditions));
    return *status;
}

std::optional<StatusFlags> readStatusFlags(JsonReader& reader) {
    StatusFlags flags{};
    const auto numbers = numbersOf(reader, "statusFlags", flags.size(), anyByte);
    std::ranges::transform(numbers, flags.begin(), [](uint32_t flag) { return static_cast<uint8_t>(flag); });
    return reader.has("statusFlags") ? std::optional(flags) : std::nullopt;
}

void readMediaList(JsonReader& reader, PrinterSetup& printer) {
    const Json* media = reader.list("media", maximumMedia);
    if (media == nullptr) return;
    printer.media.clear();
    for (size_t i = 0; i < media->size(); ++i) {
        printer.media.push_back(readMedia((*media)[i], reader.placeOf("media", i)));
    }
}

PrinterSetup readPrinter(const Json& json, const std::string& place, size_t index, PrinterSetup printer) {
    JsonReader reader(json, place);
    printer.serial = readSerial(reader, index);
    printer.foreign = reader.flag("foreign", printer.foreign);
    readMediaList(reader, printer);
    printer.timePerPage = reader.seconds("secondsPerPage", printer.timePerPage);
    printer.condition = readCondition(reader);
    printer.statusFlags = readStatusFlags(reader);
    printer.uniqueString = reader.text("uniqueString", printer.uniqueString);
    if (printer.uniqueString.size() > uniqueStringSize)
        reader.refuse("uniqueString", "must have at most 23 bytes");
    std::ranges::copy(numbersOf(reader, "counters", counterCount, anyNumber), printer.counters.begin());
    printer.jobNumber = byteOf(reader, "jobNumber", printer.jobNumber);
    reader.finish();
    return printer;
}

std::vector<PrinterSetup> readPrinters(JsonReader& reader, const PrinterSetup& common) {
    static const Json onePrinter = Json::array({Json::object()});
    const Json* list = reader.list("printers", maximumPrinters);
    const Json& printers = list == nullptr ? onePrinter : *list;
    std::vector<PrinterSetup> setups;
    std::set<std::string> serials;
    for (size_t i = 0; i < printers.size(); ++i) {
        const std::string place = reader.placeOf("printers", i);
        setups.push_back(readPrinter(printers[i], place, i, common));
        if (!serials.insert(setups.back().serial).second) {
            throw ConfigurationError(place + ".serial is the same as another printer's");
        }
    }
    return setups;
}

enum FaultKeys { noKeys, secondsKey, bytesKey, kindKey, statusKeys };

struct ActionName {
    std::string_view name;
    FaultAction action;
    FaultKeys keys;
    bool withinData;  // makes sense between two bytes of image data
};
constexpr ActionName actions[] = {
    {"late", FaultAction::late, secondsKey, true},
    {"never", FaultAction::never, noKeys, true},
    {"short", FaultAction::shorten, bytesKey, false},
    {"long", FaultAction::lengthen, bytesKey, false},
    {"kind", FaultAction::changeKind, kindKey, false},
    {"error", FaultAction::error, statusKeys, false},
    {"status", FaultAction::changeStatus, statusKeys, false},
    {"closePipe", FaultAction::closePipe, noKeys, true},
    {"unplug", FaultAction::unplug, noKeys, true},
    {"replug", FaultAction::replug, secondsKey, true},
};

void readMoment(JsonReader& reader, Fault& fault) {
    if (reader.has("imageByte")) {
        fault.imageByte = reader.number("imageByte", 0, anyNumber);
        return;
    }
    const std::string name = reader.text("command");
    if (name == "any") return;
    const Command* command = findCommand(name);
    if (command == nullptr) reader.refuse("command", oneOf(allCommands()) + ", or \"any\"");
    fault.command = command->id;
}

uint32_t readOccurrence(JsonReader& reader, const Json& json) {
    if (json.value("occurrence", Json()) != "every") return reader.number("occurrence", 1, anyNumber, 1);
    reader.text("occurrence");
    return 0;
}

void readAction(JsonReader& reader, Fault& fault) {
    const std::string name = reader.text("action");
    const auto found = std::ranges::find(actions, name, &ActionName::name);
    if (found == std::end(actions)) reader.refuse("action", oneOf(actions));
    if (fault.imageByte && !found->withinData) reader.refuse("action", "needs a command");
    constexpr uint32_t longestAnswer = 2048;
    fault.action = found->action;
    if (found->keys == secondsKey) fault.duration = reader.seconds("seconds");
    if (found->keys == bytesKey) fault.bytes = reader.number("bytes", 0, longestAnswer);
    if (found->keys == kindKey) fault.kind = byteOf(reader, "kind");
    if (found->keys == statusKeys) {
        fault.status = {byteOf(reader, "number"), byteOf(reader, "group", 0), byteOf(reader, "detail", 0)};
    }
}

uint32_t readPrinterNumber(JsonReader& reader, size_t printers) {
    const uint32_t number = reader.number("printer", 0, anyByte, 0);
    if (number >= printers) reader.refuse("printer", "must be the number of a printer");
    return number;
}

Fault readFault(const Json& json, const std::string& place, size_t printers) {
    JsonReader reader(json, place);
    Fault fault;
    fault.printer = readPrinterNumber(reader, printers);
    readMoment(reader, fault);
    fault.occurrence = readOccurrence(reader, json);
    readAction(reader, fault);
    reader.finish();
    return fault;
}

Change readChange(JsonReader& reader, size_t printers) {
    Change change;
    change.printer = readPrinterNumber(reader, printers);
    if (reader.has("condition") || reader.has("errorGroup") || reader.has("errorDetail")) {
        reader.text("condition");
        change.condition = readCondition(reader);
    }
    change.statusFlags = readStatusFlags(reader);
    if (reader.has("plugged")) change.plugged = reader.flag("plugged", true);
    reader.finish();
    return change;
}

std::vector<TimedChange> readTimeline(JsonReader& reader, size_t printers) {
    std::vector<TimedChange> timeline;
    const Json* list = reader.list("timeline", 1000);
    for (size_t i = 0; list != nullptr && i < list->size(); ++i) {
        JsonReader element((*list)[i], reader.placeOf("timeline", i));
        const std::chrono::milliseconds after = element.seconds("after");
        timeline.push_back({after, readChange(element, printers)});
    }
    std::ranges::stable_sort(timeline, {}, &TimedChange::after);
    return timeline;
}

std::filesystem::path readOutputFolder(JsonReader& reader) {
    namespace fs = std::filesystem;
    const std::string utf8 = reader.text("output", "printed");
    if (utf8.empty()) reader.refuse("output", "must not be empty");
    std::error_code error;
    fs::path folder = fs::absolute(std::u8string(utf8.begin(), utf8.end()), error);
    if (error) reader.refuse("output", "can't be found, as the current directory is gone");
    const fs::file_status status = fs::status(folder, error);
    if (fs::exists(status) && !fs::is_directory(status)) reader.refuse("output", "is no folder");
    return folder;
}

}  // namespace

std::string readConfigurationFile(const std::filesystem::path& path) {
    constexpr size_t largest = 1 << 20;
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    // A pipe is what a shell makes of the output of another program.
    if (exists(status) && !is_regular_file(status) && !is_fifo(status))
        throw ConfigurationError("it is no file but a folder or a device");
    std::ifstream file(path, std::ios::binary);
    if (!file) throw ConfigurationError("the file can't be read");
    std::string text(largest + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<size_t>(file.gcount()));
    if (file.bad()) throw ConfigurationError("the file can't be read");
    if (text.size() > largest) throw ConfigurationError("the file is larger than 1 MiB");
    return text;
}

Configuration parseConfiguration(const std::string& text) {
    const Json json = parseJson(text);
    JsonReader reader(json, "");
    PrinterSetup common;
    common.outputFolder = readOutputFolder(reader);
    common.dataTimeout = reader.seconds("dataTimeoutSeconds", common.dataTimeout);
    Configuration configuration;
    configuration.printers = readPrinters(reader, common);
    if (const Json* faults = reader.list("faults", 1000)) {
        for (size_t i = 0; i < faults->size(); ++i) {
            const std::string place = reader.placeOf("faults", i);
            configuration.faults.push_back(readFault((*faults)[i], place, configuration.printers.size()));
        }
    }
    configuration.timeline = readTimeline(reader, configuration.printers.size());
    reader.finish();
    return configuration;
}

Fault parseFault(const std::string& text, size_t printers) {
    const Json json = parseJson(text);
    return readFault(json, "", printers);
}

Change parseChange(const std::string& text, size_t printers) {
    const Json json = parseJson(text);
    JsonReader reader(json, "");
    return readChange(reader, printers);
}

}  // namespace simulator
