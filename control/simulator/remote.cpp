#include "remote.h"

#include "json_reader.h"
#include "simulation.h"
#include "state.h"

namespace simulator {
namespace {

State show(Simulation& all, const std::string&) {
    State printers = State::array();
    for (uint32_t number = 0; const auto printer = all.printer(number); ++number) {
        const std::lock_guard lock(printer->mutex);
        printers.push_back(stateOf(*printer));
    }
    return {{"printers", printers}};
}

State set(Simulation& all, const std::string& change) {
    all.apply(parseChange(change, all.printerCount()));
    return {{"done", true}};
}

State addFault(Simulation& all, const std::string& fault) {
    all.addFault(fault);
    return {{"done", true}};
}

State clearFaults(Simulation& all, const std::string& change) {
    const std::shared_ptr<Printer> printer = all.printer(parseChange(change, all.printerCount()).printer);
    const std::lock_guard lock(printer->mutex);
    printer->faults.clear();
    return {{"done", true}};
}

struct Deed {
    std::string_view name;
    State (*act)(Simulation& all, const std::string& details);
};
constexpr Deed deeds[] = {{"show", show}, {"set", set}, {"fault", addFault}, {"clear faults", clearFaults}};

State obey(const std::string& text) {
    Json request = parseJson(text);
    const std::string name = JsonReader(request, "").text("do");
    request.erase("do");
    for (const Deed& deed : deeds) {
        if (deed.name == name) return deed.act(Simulation::instance(), request.dump());
    }
    throw ConfigurationError("do must be one of show, set, fault, clear faults");
}

}  // namespace

std::string answerRequest(const std::string& request) {
    try {
        return textOf(obey(request), -1);
    } catch (const std::exception& error) {
        return textOf({{"error", std::string(error.what()) + "."}}, -1);
    }
}

}  // namespace simulator
