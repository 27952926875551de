#pragma once

namespace api {

/// Runs on the device-change thread: drops the printers that are gone from all objects and the device table.
void handleDeviceChange();

}  // namespace api
