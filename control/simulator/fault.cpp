#include "fault.h"

namespace simulator {

template <class Matches>
std::optional<Fault> FaultList::due(Matches matches) {
    std::optional<Fault> found;
    for (auto& [fault, seen] : waiting_) {
        if (!matches(fault)) continue;
        ++seen;
        if (!found && (fault.occurrence == 0 || fault.occurrence == seen)) found = fault;
    }
    return found;
}

std::optional<Fault> FaultList::dueAtCommand(uint16_t command) {
    return due(
        [=](const Fault& fault) { return !fault.imageByte && fault.command.value_or(command) == command; });
}

std::optional<Fault> FaultList::dueInData() {
    return due([](const Fault& fault) { return fault.imageByte.has_value(); });
}

}  // namespace simulator
