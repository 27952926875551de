#include "api/device_change.h"

#include "api/object_table.h"
#include "device/api_lock.h"
#include "device/device_change.h"

namespace api {

void handleDeviceChange() {
    device::HoldingApiLock lock(device::apiLock);
    for (uint32_t slot = 0; slot < objectCount(); ++slot) {
        const ObjectUse object(static_cast<int>(slot));
        if (object) device::checkSelectedDevice(*object);
    }
    const ObjectUse first(0);
    if (first) device::sweepDevices(*first);
}

}  // namespace api
