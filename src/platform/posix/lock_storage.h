#pragma once

#include <pthread.h>

namespace platform {

struct LockStorage {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
};

struct ConditionStorage {
    pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
};

}  // namespace platform
