/// Entry points that create, open, close and release the printer objects.
#include "api/entry_frame.h"
#include "api/internal.h"
#include "api/object_lifecycle.h"
#include "api/object_table.h"

using api::LockedEntryGuard;

uint32_t zprusb_MakeObject(uint16_t count) {
    const LockedEntryGuard guard;
    return api::makeObjects(count);
}

uint32_t zprusb_ReleaseObject(uint16_t* resultCode) {
    const LockedEntryGuard guard;
    return api::report(api::releaseObjects(), resultCode);
}

uint32_t zprusb_attachObjectCount(uint16_t* boundThreads, uint16_t* objectCount) {
    const LockedEntryGuard guard;
    if (boundThreads != nullptr) *boundThreads = static_cast<uint16_t>(api::boundThreadCount());
    if (objectCount != nullptr) *objectCount = static_cast<uint16_t>(api::objectCount());
    return 1;
}

uint32_t zprusb_open(uint16_t* resultCode) {
    const LockedEntryGuard guard;
    return api::report(api::openLibrary(api::Purpose::printing), resultCode);
}

uint32_t zprusb_openForUpdate(uint32_t, uint16_t* resultCode) {
    const LockedEntryGuard guard;
    return api::report(api::openLibrary(api::Purpose::update), resultCode);
}

void zprusb_close(void) {
    const LockedEntryGuard guard;
    api::closeLibrary();
}
