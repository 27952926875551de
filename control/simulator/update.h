/// Handler of the command that sends tone curves and firmware images.
#pragma once

#include "commands.h"

namespace simulator {

/// The targets of the two tone curves. Every other target takes a firmware image.
constexpr uint8_t toneCurveTargets[] = {3, 4};

/// Takes a target, a start and a length; so many bytes of data without a frame follow the answer. Data that
/// don't arrive completely change nothing.
Reply update(Printer& printer, ByteView payload);

}  // namespace simulator
