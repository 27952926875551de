#include "api/device_change.h"

#include "api/object_table.h"
#include "device/api_lock.h"
#include "device/device_change.h"
#include "device/reservation.h"

namespace api {

void handleDeviceChange(const std::atomic<bool>& stop) {
    if (!device::apiLock.enterUnless(stop)) return;
    forEachObject(device::checkSelectedDevice);
    const ObjectUse first(0);
    if (first) device::sweepDevices(*first);
    forEachObject(device::dropLostPage);
    device::apiLock.leave();
}

}  // namespace api
