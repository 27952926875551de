#include "zprusb_simulator.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "simulation.h"
#include "state.h"

using simulator::Printer;
using simulator::Simulation;

namespace {

template <class Change>
uint32_t tryTo(Change change, char* error, uint32_t errorSize) noexcept {
    try {
        change(Simulation::instance());
        return 1;
    } catch (const std::exception& exception) {
        if (error != nullptr) std::snprintf(error, errorSize, "%s.", exception.what());
        return 0;
    }
}

// Runs with the printer's lock held.
template <class Operation>
uint32_t withPrinter(uint32_t number, Operation operation) {
    const std::shared_ptr<Printer> printer = Simulation::instance().printer(number);
    if (printer == nullptr) return 0;
    std::unique_lock lock(printer->mutex);
    return operation(*printer, lock);
}

// Text is cut off where it doesn't fit.
uint32_t handOut(const std::string& text, char* place, uint32_t capacity) {
    if (capacity > 0) std::snprintf(place, capacity, "%s", text.c_str());
    return static_cast<uint32_t>(text.size());
}

uint32_t handOut(const simulator::Bytes& bytes, uint8_t* place, uint32_t capacity) {
    std::copy_n(bytes.begin(), std::min<size_t>(bytes.size(), capacity), place);
    return static_cast<uint32_t>(bytes.size());
}

}  // namespace

extern "C" {

uint32_t zprusbsim_configure(const char* json, char* error, uint32_t errorSize) {
    return tryTo([=](Simulation& all) { all.configure(json); }, error, errorSize);
}

uint32_t zprusbsim_addFault(const char* json, char* error, uint32_t errorSize) {
    return tryTo([=](Simulation& all) { all.addFault(json); }, error, errorSize);
}

uint32_t zprusbsim_clearFaults(uint32_t number) {
    return withPrinter(number, [](Printer& printer, auto&) {
        printer.faults.clear();
        return 1u;
    });
}

uint32_t zprusbsim_setCondition(uint32_t number, const char* condition, uint8_t group, uint8_t detail) {
    const auto status = simulator::statusOf(condition, group, detail);
    if (!status) return 0;
    return Simulation::instance().apply({.printer = number, .condition = status});
}

uint32_t zprusbsim_setStatusFlags(uint32_t number, uint8_t first, uint8_t second) {
    return Simulation::instance().apply(
        {.printer = number, .statusFlags = simulator::StatusFlags{first, second}});
}

uint32_t zprusbsim_unplug(uint32_t number) {
    return Simulation::instance().apply({.printer = number, .plugged = false});
}

uint32_t zprusbsim_plug(uint32_t number) {
    return Simulation::instance().apply({.printer = number, .plugged = true});
}

uint32_t zprusbsim_takeRequest(uint32_t number, uint8_t* bytes, uint32_t capacity) {
    return withPrinter(number, [=](Printer& printer, auto&) {
        if (printer.requests.empty()) return 0u;
        const simulator::Bytes request = std::move(printer.requests.front());
        printer.requests.pop_front();
        return handOut(request, bytes, capacity);
    });
}

uint32_t zprusbsim_printedPages(uint32_t number) {
    return withPrinter(number, [](Printer& printer, auto&) { return printer.printedPages; });
}

uint32_t zprusbsim_waitForPages(uint32_t number, uint32_t pages, uint32_t milliseconds) {
    return withPrinter(number, [=](Printer& printer, auto& lock) {
        const auto deadline = simulator::Clock::now() + std::chrono::milliseconds(milliseconds);
        return uint32_t{
            printer.pageEnded.wait_until(lock, deadline, [&] { return printer.endedPages >= pages; })};
    });
}

uint32_t zprusbsim_lastPage(uint32_t number, char* path, uint32_t capacity) {
    return withPrinter(number, [=](Printer& printer, auto&) {
        const std::u8string text = printer.lastPage.u8string();
        return handOut(std::string(text.begin(), text.end()), path, capacity);
    });
}

uint32_t zprusbsim_state(uint32_t number, char* json, uint32_t capacity) {
    return withPrinter(number, [=](Printer& printer, auto&) {
        return handOut(simulator::textOf(stateOf(printer), 4) + "\n", json, capacity);
    });
}

uint32_t zprusbsim_update(uint32_t number, uint8_t target, uint8_t* bytes, uint32_t capacity) {
    return withPrinter(number, [=](Printer& printer, auto&) {
        const auto found = printer.updates.find(target);
        return found == printer.updates.end() ? 0u : handOut(found->second.data, bytes, capacity);
    });
}
}
