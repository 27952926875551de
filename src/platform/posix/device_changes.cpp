#include "platform/device_changes.h"

#include <linux/netlink.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>

#include "device_event.h"

namespace platform {

struct DeviceChanges {
    std::atomic<bool> used{false};
    std::atomic<int> kernel{-1};  // the kernel's device notifications; -1 where they are out of reach
    std::atomic<int> posted{-1};  // datagrams of the control library; -1 while another listener takes them
};

namespace {

// All of the process, where the child of a fork finds them whatever its parent was doing. There is more than
// one only while former ones are ending.
constinit DeviceChanges listeners[4];

constexpr int notificationsAtOnce = 1024;  // a sender that never stops must not keep the reader

template <class Address>
int openReceiver(int family, int protocol, const Address& address, size_t length) {
    const int receiver = socket(family, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, protocol);
    if (receiver < 0) return -1;
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    if (bind(receiver, generic, static_cast<socklen_t>(length)) == 0) return receiver;
    close(receiver);
    return -1;
}

int openKernelNotifications() {
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = 1;  // what the kernel itself sends
    return openReceiver(AF_NETLINK, NETLINK_KOBJECT_UEVENT, address, sizeof address);
}

int openPostedNotifications() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    char* name = address.sun_path + 1;  // a first byte of zero: a name that no file stands for
    const int length = std::snprintf(name, sizeof address.sun_path - 1, "zprusb-device-change-%d", getpid());
    return openReceiver(AF_UNIX, 0, address, offsetof(sockaddr_un, sun_path) + 1 + static_cast<size_t>(length));
}

enum class Taken { nothing, otherNotification, deviceChange };

// A queue that has run over has lost some, of which one may have told of a change.
Taken takenAfterFailure() {
    return errno == ENOBUFS ? Taken::deviceChange : Taken::nothing;
}

Taken takeKernelNotification(int receiver) {
    char text[4096];  // the kernel's are about half as long at most
    sockaddr_nl sender{};
    socklen_t senderSize = sizeof sender;
    const ssize_t length =
        recvfrom(receiver, text, sizeof text, 0, reinterpret_cast<sockaddr*>(&sender), &senderSize);
    if (length < 0) return takenAfterFailure();
    const bool isKernel = sender.nl_pid == 0;  // other programs may send as well
    return isKernel && tellsOfUsbDevice({text, static_cast<size_t>(length)}) ? Taken::deviceChange
                                                                             : Taken::otherNotification;
}

Taken takePostedNotification(int receiver) {
    char byte;  // the content doesn't matter
    return recv(receiver, &byte, sizeof byte, 0) >= 0 ? Taken::deviceChange : takenAfterFailure();
}

bool takeAll(int receiver, Taken (*take)(int receiver)) {
    bool changed = false;
    for (int count = 0; count < notificationsAtOnce; ++count) {
        const Taken taken = take(receiver);
        if (taken == Taken::nothing) break;
        if (taken == Taken::deviceChange) changed = true;
    }
    return changed;
}

// Another listener may have had the name: one that is about to end, or a child's that was forked meanwhile.
bool takesOver(DeviceChanges& listener) {
    if (listener.posted >= 0) return false;
    listener.posted = openPostedNotifications();
    return listener.posted >= 0;
}

void closeReceiver(std::atomic<int>& receiver) {
    const int former = receiver.exchange(-1);
    if (former >= 0) close(former);
}

}  // namespace

DeviceChanges* openDeviceChanges() {
    for (DeviceChanges& listener : listeners) {
        if (listener.used.exchange(true)) continue;
        listener.kernel = openKernelNotifications();
        listener.posted = openPostedNotifications();
        return &listener;
    }
    return nullptr;
}

bool takeDeviceChange(DeviceChanges* listener) {
    if (listener == nullptr) return false;
    const bool mayHaveMissedSome = takesOver(*listener);
    const bool fromKernel = takeAll(listener->kernel, takeKernelNotification);
    const bool fromProcess = takeAll(listener->posted, takePostedNotification);
    return mayHaveMissedSome || fromKernel || fromProcess;
}

void closeDeviceChanges(DeviceChanges* listener) {
    if (listener == nullptr) return;
    closeReceiver(listener->kernel);
    closeReceiver(listener->posted);
    listener->used = false;
}

void closeDeviceChangesInChild() {
    for (DeviceChanges& listener : listeners) closeDeviceChanges(&listener);
}

}  // namespace platform
