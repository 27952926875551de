/// The lines of the table, by subject.
#pragma once

#include "comparison.h"

namespace bench {

/// Measures a comparison and prints its line.
using Report = std::function<void(const Comparison&)>;

void comparePageData(const Report& report);
void compareExchanges(const Report& report);
void compareOpening(const Report& report);
void compareReservation(const Report& report);
void compareFirmwareLoad(const Report& report);

}  // namespace bench
