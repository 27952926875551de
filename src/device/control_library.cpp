#include "device/control_library.h"

#include "platform/fork.h"
#include "platform/lock.h"
#include "platform/thread.h"

namespace device {

namespace {

template <class Function>
bool resolve(platform::ModuleHandle module, const char* name, Function*& function) {
    function = reinterpret_cast<Function*>(platform::findFunction(module, name));
    return function != nullptr;
}

bool resolveAll(ControlLibrary& control) {
    bool all = true;
#define RESOLVE(member, name) all = all && resolve(control.module, name, control.member);
    CONTROL_FUNCTIONS(RESOLVE)
#undef RESOLVE
    return all;
}

// Held while the control library is loaded and unloaded, which takes as long as the system's loader.
constinit platform::Lock controlLibraryLock;
constinit ControlLibrary controlLibrary GUARDED_BY(controlLibraryLock);
constinit uint32_t uses GUARDED_BY(controlLibraryLock) = 0;

bool load() REQUIRES(controlLibraryLock) {
    controlLibrary = {};
    controlLibrary.module = platform::loadBesideThisLibrary("RQX5820UsbCtrl");
    if (controlLibrary.module == nullptr) return false;
    if (resolveAll(controlLibrary)) return true;
    platform::unloadModule(controlLibrary.module);
    return false;
}

}  // namespace

const ControlLibrary* useControlLibrary() {
    const platform::Holding holding(controlLibraryLock);
    if (uses == 0 && !load()) return nullptr;
    ++uses;
    return &controlLibrary;
}

void leaveControlLibrary(const ControlLibrary* control) {
    if (control == nullptr) return;
    const platform::Holding holding(controlLibraryLock);
    if (--uses == 0 && !platform::threadsWereLeftBehind()) platform::unloadModule(controlLibrary.module);
}

void resetControlLibraryInChild() {
    platform::startAnew(controlLibraryLock);
    const platform::Holding holding(controlLibraryLock);
    uses = 0;
}

}  // namespace device
