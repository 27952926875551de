#include "platform/cancellation.h"

#include <pthread.h>

namespace platform {

CancellationGuard::CancellationGuard() {
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &former_);
}

CancellationGuard::~CancellationGuard() {
    pthread_setcancelstate(former_, nullptr);
}

}  // namespace platform
