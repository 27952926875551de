/// The place where the system reports that devices came or went: a hidden window on Windows, a queue fed by
/// the kernel's device notifications on Linux. It belongs to the thread that created it.
///
/// On Linux a message can also be posted without the kernel: a datagram of any content to the abstract
/// socket "zprusb-device-change-PID", where PID is the process identifier in decimal, counts as "device nodes
/// changed". A control library that learns of a change by other means uses it, as the simulator does.
#pragma once

#include <cstdint>

namespace platform {

struct MessageWindow;

struct WindowMessage {
    uint32_t number;
    uint64_t parameter;
};

constexpr uint32_t messageDeviceChange = 0x0219;
constexpr uint64_t deviceNodesChanged = 7;

/// @return null when the system refuses; taking from null finds no message.
MessageWindow* createMessageWindow();

/// Takes one message out of the queue without waiting. On Linux all notifications that have come in since the
/// last call are one message; the kernel's count when they tell that a USB device was added or removed, or that
/// some were lost. A window that is not the only one of its process gets what is posted once the others are
/// gone, and a message first, for what nobody may have got in between.
/// @return false when there is none.
bool takeMessage(MessageWindow* window, WindowMessage& message);

/// Accepts null.
void destroyMessageWindow(MessageWindow* window);

/// In the child of a fork, destroys what it has inherited of its parent's windows, which stay the parent's.
void destroyWindowsInChild();

}  // namespace platform
