/// Handlers of the commands for service and maintenance.
#pragma once

#include "commands.h"

namespace simulator {

/// A permission names an address and a count; the memory is written only when the request just before was a
/// permission for the same bytes or more.
Reply maintenancePermission(Printer& printer, ByteView payload);
Reply setEepromMaintenance(Printer& printer, ByteView payload);
Reply getEepromMaintenance(Printer& printer, ByteView payload);

/// Takes a kind and two parameters, and answers with the start of the results.
Reply selfDiagnosis(Printer& printer, ByteView payload);

/// Answers, in 40 bytes: kind, first and second parameter, outcome (1 passed, 2 failed), the status number,
/// group and detail that decided it, then "SIMULATION".
Reply getSelfDiagnosisResults(Printer& printer, ByteView payload);

Reply setMaintenanceParams(Printer& printer, ByteView payload);

/// Answers, in 38 bytes: both selectors, the number of printed pages (4 bytes), "SIMULATION", the six
/// maintenance parameters (2 bytes each), zeros.
Reply getMaintenanceData(Printer& printer, ByteView payload);

/// Echoes its bytes.
Reply universal(Printer& printer, ByteView payload);

}  // namespace simulator
