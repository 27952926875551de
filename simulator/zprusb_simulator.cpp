#include "zprusb_simulator.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "simulation.h"

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

}  // namespace

extern "C" {

uint32_t zprusbsim_configure(const char* json, char* error, uint32_t errorSize) {
    return tryTo([=](Simulation& all) { all.configure(json); }, error, errorSize);
}

uint32_t zprusbsim_addFault(const char* json, char* error, uint32_t errorSize) {
    return tryTo([=](Simulation& all) { all.addFault(json); }, error, errorSize);
}

uint32_t zprusbsim_setCondition(uint32_t number, const char* condition, uint8_t group, uint8_t detail) {
    const auto status = simulator::statusOf(condition, group, detail);
    if (!status) return 0;
    return withPrinter(number, [&](Printer& printer, auto&) {
        printer.setCondition(*status);
        return 1u;
    });
}

uint32_t zprusbsim_unplug(uint32_t number) {
    return Simulation::instance().unplug(number);
}

uint32_t zprusbsim_plug(uint32_t number) {
    return Simulation::instance().plug(number);
}

uint32_t zprusbsim_takeRequest(uint32_t number, uint8_t* bytes, uint32_t capacity) {
    return withPrinter(number, [=](Printer& printer, auto&) {
        if (printer.requests.empty()) return 0u;
        const simulator::Bytes request = std::move(printer.requests.front());
        printer.requests.pop_front();
        std::copy_n(request.begin(), std::min<size_t>(request.size(), capacity), bytes);
        return static_cast<uint32_t>(request.size());
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
        if (capacity > 0) std::snprintf(path, capacity, "%s", reinterpret_cast<const char*>(text.c_str()));
        return static_cast<uint32_t>(text.size());
    });
}
}
