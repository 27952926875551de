#pragma once

#include <pthread.h>

namespace platform {

struct LockStorage {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
};

struct RecursiveLockStorage {
    pthread_mutex_t mutex = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
};

}  // namespace platform
