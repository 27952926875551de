#include "platform/lock.h"

namespace platform {

void Lock::enter() {
    pthread_mutex_lock(&storage_.mutex);
}

void Lock::leave() {
    pthread_mutex_unlock(&storage_.mutex);
}

void RecursiveLock::enter() {
    pthread_mutex_lock(&storage_.mutex);
}

void RecursiveLock::leave() {
    pthread_mutex_unlock(&storage_.mutex);
}

}  // namespace platform
