#include "platform/message_window.h"

#include <linux/netlink.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>

#include "platform/memory.h"

namespace platform {

struct MessageWindow {
    int kernel;  // the kernel's device notifications; -1 where they are out of reach, as in a container
    int posted;  // datagrams of the control library; -1 when another window of the process takes them
};

namespace {

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

// Whether one was there. A queue that has run over has lost some, so one was there.
bool takeNotification(int receiver) {
    char byte;  // the content doesn't matter
    return receiver >= 0 && (recv(receiver, &byte, sizeof byte, 0) >= 0 || errno == ENOBUFS);
}

bool takeAll(int receiver) {
    int count = 0;
    while (count < notificationsAtOnce && takeNotification(receiver)) ++count;
    return count > 0;
}

void closeReceiver(int receiver) {
    if (receiver >= 0) close(receiver);
}

}  // namespace

MessageWindow* createMessageWindow() {
    const int kernel = openKernelNotifications();
    const int posted = openPostedNotifications();
    auto* window = kernel >= 0 || posted >= 0 ? create<MessageWindow>(kernel, posted) : nullptr;
    if (window == nullptr) {
        closeReceiver(kernel);
        closeReceiver(posted);
    }
    return window;
}

bool takeMessage(MessageWindow* window, WindowMessage& message) {
    if (window == nullptr) return false;
    const bool fromKernel = takeAll(window->kernel);
    const bool fromProcess = takeAll(window->posted);
    if (!fromKernel && !fromProcess) return false;
    message = {messageDeviceChange, deviceNodesChanged};
    return true;
}

void destroyMessageWindow(MessageWindow* window) {
    if (window == nullptr) return;
    closeReceiver(window->kernel);
    closeReceiver(window->posted);
    destroy(window);
}

}  // namespace platform
