#include "configuration.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
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

Status readCondition(JsonReader& reader) {
    const std::string name = reader.text("condition", "ready");
    const auto status = statusOf(name, byteOf(reader, "errorGroup", 0), byteOf(reader, "errorDetail", 0));
    if (!status) reader.refuse("condition", "must be the name of a condition");
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
    if (command == nullptr) reader.refuse("command", "must be the name of a command or \"any\"");
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
    if (found == std::end(actions)) reader.refuse("action", "must be the name of an action");
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

Fault readFault(const Json& json, const std::string& place, size_t printers) {
    JsonReader reader(json, place);
    Fault fault;
    fault.printer = reader.number("printer", 0, anyByte, 0);
    if (fault.printer >= printers) reader.refuse("printer", "must be the number of a printer");
    readMoment(reader, fault);
    fault.occurrence = readOccurrence(reader, json);
    readAction(reader, fault);
    reader.finish();
    return fault;
}

std::filesystem::path folderOf(const std::string& utf8) {
    return std::filesystem::absolute(std::u8string(utf8.begin(), utf8.end()));
}

}  // namespace

Configuration parseConfiguration(const std::string& text) {
    const Json json = parseJson(text);
    JsonReader reader(json, "");
    PrinterSetup common;
    common.outputFolder = folderOf(reader.text("output", "printed"));
    common.dataTimeout = reader.seconds("dataTimeoutSeconds", common.dataTimeout);
    Configuration configuration;
    configuration.printers = readPrinters(reader, common);
    if (const Json* faults = reader.list("faults", 1000)) {
        for (size_t i = 0; i < faults->size(); ++i) {
            const std::string place = reader.placeOf("faults", i);
            configuration.faults.push_back(readFault((*faults)[i], place, configuration.printers.size()));
        }
    }
    reader.finish();
    return configuration;
}

Fault parseFault(const std::string& text, size_t printers) {
    const Json json = parseJson(text);
    return readFault(json, "", printers);
}

}  // namespace simulator
