/// Handlers of the commands that change the printer without printing.
#pragma once

#include "commands.h"

namespace simulator {

/// Whether the two bytes, an address and a count, name a part of the maintenance memory.
bool isInMemory(const Printer& printer, ByteView addressAndCount);

Reply flashLed(Printer& printer, ByteView payload);
Reply reset(Printer& printer, ByteView payload);
Reply operationButton(Printer& printer, ByteView payload);
Reply resetErrorLog(Printer& printer, ByteView payload);
Reply setPrinterParameter(Printer& printer, ByteView payload);
Reply maintenancePermission(Printer& printer, ByteView payload);
Reply setEepromMaintenance(Printer& printer, ByteView payload);
Reply setPrinterUniqueString(Printer& printer, ByteView payload);

}  // namespace simulator
