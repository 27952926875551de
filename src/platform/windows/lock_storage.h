#pragma once

namespace platform {

/// The system's slim lock is one pointer that starts as null; this keeps the system's header out of the many
/// files that only lock.
struct LockStorage {
    void* slimLock = nullptr;
};

/// Likewise the system's condition.
struct ConditionStorage {
    void* condition = nullptr;
};

}  // namespace platform
