#include <windows.h>

#include "common/host_pipes.h"

namespace control {

void closeHostPipe(HostPipe pipe) {
    CloseHandle(reinterpret_cast<HANDLE>(pipe));
}

}  // namespace control
