#pragma once

#include <atomic>

namespace api {

/// Runs on the device-change thread: drops the printers that are gone from all objects and the device table,
/// and with them the pages that were open on them. Does nothing once `stop` is set while others have the
/// API lock.
void handleDeviceChange(const std::atomic<bool>& stop);

}  // namespace api
