#include "steps.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "program.h"
#include "system.h"
#include "text.h"

namespace tool {
namespace {

Steps steps = Steps::forPeople;

constexpr int lineWidth = 79;

void clearLine() {
    std::fprintf(stderr, "\r%*s\r", lineWidth, "");
}

}  // namespace

void chooseSteps(Steps chosen) {
    steps = chosen;
}

Steps chosenSteps() {
    return steps;
}

void tellStep(const std::string& json) {
    if (steps == Steps::asJson) std::fprintf(stderr, "%s\n", json.c_str());
}

void showWaiting(const std::string& what, long seconds, bool first) {
    tellStep(nlohmann::ordered_json{{"step", "waiting"}, {"for", what}, {"seconds", seconds}}.dump(
        -1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
    if (steps != Steps::forPeople) return;
    if (isTerminal(stderr)) {
        std::fprintf(stderr, "\rWaiting for %s, %ld s ", what.c_str(), seconds);
        std::fflush(stderr);
    } else if (first) {
        complain("Waiting for " + what + ".");
    }
}

void endWaitingLine() {
    if (steps == Steps::forPeople && isTerminal(stderr)) clearLine();
}

}  // namespace tool
