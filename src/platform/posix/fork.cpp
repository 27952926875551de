#include "platform/fork.h"

#include <pthread.h>

namespace platform {

bool runInForkedChildren(void (*function)()) {
    return pthread_atfork(nullptr, nullptr, function) == 0;
}

}  // namespace platform
