/// Handlers of the commands that set the printer up, or back.
#pragma once

#include "commands.h"

namespace simulator {

Reply flashLed(Printer& printer, ByteView payload);
Reply reset(Printer& printer, ByteView payload);
Reply operationButton(Printer& printer, ByteView payload);
Reply resetErrorLog(Printer& printer, ByteView payload);
Reply setPrinterParameter(Printer& printer, ByteView payload);
Reply setPrinterUniqueString(Printer& printer, ByteView payload);

}  // namespace simulator
