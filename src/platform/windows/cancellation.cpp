#include "platform/cancellation.h"

namespace platform {

CancellationGuard::CancellationGuard() = default;
CancellationGuard::~CancellationGuard() = default;

}  // namespace platform
