#include "device/control_library.h"

#include "platform/thread.h"

namespace device {

namespace {

template <class Function>
bool resolve(platform::ModuleHandle module, const char* name, Function*& function) {
    function = reinterpret_cast<Function*>(platform::findFunction(module, name));
    return function != nullptr;
}

bool resolveAll(UsbControlLibrary& control) {
    const platform::ModuleHandle module = control.module;
    return resolve(module, "SDKUsb_Open", control.open) && resolve(module, "SDKUsb_OpenEx", control.openEx) &&
           resolve(module, "SDKUsb_Close", control.close) &&
           resolve(module, "SDKUsb_GetDeviceHandle", control.getDeviceHandle) &&
           resolve(module, "SDKUsb_GetDeviceName", control.getDeviceName) &&
           resolve(module, "SDKUsb_GetDeviceIDString", control.getDeviceIdString) &&
           resolve(module, "SDKUsb_GetPipeHandle", control.getPipeHandle) &&
           resolve(module, "SDKUsb_ClosePipe", control.closePipe) &&
           resolve(module, "SDKUsb_AbortPipe", control.abortPipe) &&
           resolve(module, "SDKUsb_ResetPipe", control.resetPipe) &&
           resolve(module, "SDKUsb_CheckDeviceName", control.checkDeviceName) &&
           resolve(module, "SDKUsb_CheckDevice", control.checkDevice) &&
           resolve(module, "SDKUsb_ResetDevice", control.resetDevice);
}

}  // namespace

bool load(UsbControlLibrary& control) {
    if (control.loaded) return true;
    control = {};
    control.module = platform::loadBesideThisLibrary("RQX5820UsbCtrl");
    if (control.module == nullptr) return false;
    if (!resolveAll(control)) {
        platform::unloadModule(control.module);
        control = {};
        return false;
    }
    control.loaded = true;
    return true;
}

void unload(UsbControlLibrary& control) {
    if (!control.loaded) return;
    const platform::ModuleHandle module = control.module;
    control = {};
    if (!platform::threadsWereLeftBehind()) platform::unloadModule(module);
}

}  // namespace device
