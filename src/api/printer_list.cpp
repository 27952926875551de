#include "api/printer_list.h"

#include <cstring>

#include "api/object_table.h"
#include "device/enumeration.h"
#include "device/reservation.h"
#include "device/selection.h"

namespace api {

namespace {

void fillWithEnds(uint8_t* list) {
    std::memset(list, ZPRUSB_LIST_END, device::deviceCount);
}

}  // namespace

uint32_t listPrinters(uint8_t* list) {
    fillWithEnds(list);
    const ObjectUse first(0);
    if (!first) return 0;
    const uint8_t selected = (*first).deviceIndex;
    const uint32_t generation = device::deviceTableGeneration;
    const uint32_t found = device::enumeratePrinters(*first, list);
    if (generation != device::deviceTableGeneration) {
        fillWithEnds(list);
        return 0;
    }
    forEachObject(device::forgetStalePipes);
    forEachObject(device::dropLostPage);
    if (selected == device::noDeviceIndex) return found;
    const ObjectUse own(bindThreadSlot());
    if (own) (void)device::selectByIndex(*own, selected);  // takes the pipe handles anew
    return found;
}

}  // namespace api
