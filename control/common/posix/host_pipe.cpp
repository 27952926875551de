#include <unistd.h>

#include "common/host_pipes.h"

namespace control {

void closeHostPipe(HostPipe pipe) {
    ::close(static_cast<int>(pipe));
}

}  // namespace control
