/// A named mutex that no other test and no other run of the tests uses.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "platform/named_mutex.h"
#include "platform/thread.h"
#include "support/system.h"

class NamedMutexes : public testing::Test {
protected:
    ~NamedMutexes() override {
        platform::closeNamedMutex(mutex);
        test::removeMutex(name);
    }

    void SetUp() override { ASSERT_NE(mutex, nullptr); }

    /// What another thread meets that waits, and releases what it obtained.
    platform::MutexWait elsewhere(uint32_t milliseconds) const {
        platform::MutexWait result;
        std::thread([&] {
            result = platform::waitForNamedMutex(mutex, milliseconds);
            platform::releaseNamedMutex(mutex);
        }).join();
        return result;
    }

    test::ChildProcess holdingChild() const { return {test::ownProgram(), {"hold-mutex", name}}; }

    // It begins with characters as in a device path, which no file name can have, and is longer than one.
    const std::string name = "usb#vid_1234&pid_5678#{a5dcbf10-6530}/\xC3\xA4 \x01?*.." +
                             std::to_string(platform::currentThreadId()) + std::string(100, 'n');
    platform::NamedMutex* mutex = platform::openNamedMutex(name.c_str());
};
