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
    ~NamedMutexes() override { platform::closeNamedMutex(mutex); }

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

    const std::string name = "test_" + std::to_string(platform::currentThreadId());
    platform::NamedMutex* mutex = platform::openNamedMutex(name.c_str());
};
