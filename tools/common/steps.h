/// What a command tells on standard error while it works: a bar or a line on a terminal, or for programs a line
/// of JSON for each step.
#pragma once

#include <cstddef>
#include <string>

namespace tool {

enum class Steps { forPeople, asJson, none };

void chooseSteps(Steps steps);
Steps chosenSteps();

/// A step for programs; people see nothing of it.
void tellStep(const std::string& json);

/// What the program waits for.
/// @param first whether it has not been told before.
void showWaiting(const std::string& what, long seconds, bool first);

/// Clears the line that a terminal shows.
void endWaitingLine();

}  // namespace tool
