#pragma once

#include <pthread.h>

namespace usb {

class Lock {
public:
    explicit Lock(pthread_mutex_t& mutex) : mutex_(mutex) { pthread_mutex_lock(&mutex_); }
    ~Lock() { pthread_mutex_unlock(&mutex_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    pthread_mutex_t& mutex_;
};

}  // namespace usb
