#include "state.h"

#include <nlohmann/json.hpp>

namespace simulator {
namespace {

using Json = nlohmann::ordered_json;

std::string hexadecimal(ByteView bytes) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

Json diagnosisOf(const Printer& printer) {
    if (!printer.diagnosis) return nullptr;
    const Diagnosis& diagnosis = *printer.diagnosis;
    return {{"kind", diagnosis.kind}, {"parameters", diagnosis.parameters}, {"passed", diagnosis.passed()}};
}

Json updatesOf(const Printer& printer) {
    Json list = Json::array();
    for (const auto& [target, update] : printer.updates) {
        list.push_back({{"target", target}, {"start", update.start}, {"length", update.data.size()}});
    }
    return list;
}

}  // namespace

std::string describe(const Printer& printer) {
    const Status status = printer.status();
    const Json state{{"serial", printer.setup.serial},
                     {"condition", conditionOf(status)},
                     {"errorGroup", status.group},
                     {"errorDetail", status.detail},
                     {"uniqueString", printer.uniqueString},
                     {"jobNumber", printer.jobNumber},
                     {"printedPages", printer.printedPages},
                     {"counters", printer.counters()},
                     {"memory", hexadecimal(printer.memory)},
                     {"operationButton", printer.operationButton},
                     {"parameter", printer.parameter},
                     {"maintenanceParams", printer.maintenanceParams},
                     {"ledFlashes", printer.ledFlashes},
                     {"resets", printer.resets},
                     {"requests", printer.requestCount},
                     {"diagnosis", diagnosisOf(printer)},
                     {"updates", updatesOf(printer)}};
    // The host may have written any bytes as unique string.
    return state.dump(4, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace simulator
