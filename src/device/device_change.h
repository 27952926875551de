/// What is done about unplugged printers after the system has reported a device change. Both run under the
/// API lock.
#pragma once

#include "device/device_table.h"

namespace device {

/// Closes the object's pipes and deselects its printer if that is gone; its operations then give 2000.
void checkSelectedDevice(PrinterObject& printer) REQUIRES(apiLock);

/// Closes every device of the table that is gone.
void sweepDevices(const PrinterObject& printer) REQUIRES(apiLock);

}  // namespace device
