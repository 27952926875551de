#include "state.h"

namespace simulator {
namespace {

std::string hexadecimal(ByteView bytes) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

State diagnosisOf(const Printer& printer) {
    if (!printer.diagnosis) return nullptr;
    const Diagnosis& diagnosis = *printer.diagnosis;
    return {{"kind", diagnosis.kind}, {"parameters", diagnosis.parameters}, {"passed", diagnosis.passed()}};
}

State updatesOf(const Printer& printer) {
    State list = State::array();
    for (const auto& [target, update] : printer.updates) {
        list.push_back({{"target", target}, {"start", update.start}, {"length", update.data.size()}});
    }
    return list;
}

}  // namespace

State stateOf(const Printer& printer) {
    const Status status = printer.status();
    return {{"serial", printer.setup.serial},
            {"plugged", printer.isPresent()},
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
}

std::string textOf(const State& state, int indentation) {
    // The host may have written any bytes as unique string.
    return state.dump(indentation, ' ', false, State::error_handler_t::replace);
}

}  // namespace simulator
