#include "fake_kernel.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <utility>

extern "C" {
int __real_open(const char* path, int flags, ...);
int __real_ioctl(int file, unsigned long request, ...);
int __real_close(int file);
int __real_faccessat(int folder, const char* path, int mode, int flags);
DIR* __real_opendir(const char* path);
}

namespace fake {
namespace {

namespace fs = std::filesystem;

struct Node {
    std::string port;
    int reader = -1;  // of the pipe whose full writing end stands for the file: room tells of an ended transfer
    std::deque<usbdevfs_urb*> underWay, ended;
    bool isGone = false;
};

struct Failure {
    unsigned before;  // so many succeed
    int error;
};

struct End {
    int status;
    size_t length;
};

struct Kernel {
    std::mutex mutex;
    fs::path root;
    std::map<int, Node> nodes;
    std::map<std::string, std::string> ports;  // of the nodes' paths
    std::set<std::string> forbidden;
    std::string driver;
    int holder = -1;
    std::function<Packets(const Bytes&)> answer;
    std::deque<Bytes> waiting;  // packets on their way to the host
    Bytes taken;
    bool isHeldBack = false;
    std::map<unsigned long, Failure> failures;
    std::map<unsigned long, unsigned> counts;
    std::optional<End> nextEnd[2];  // of a transfer out, and in
    unsigned address = 0;
};

Kernel& kernel() {
    static auto* const all = new Kernel;
    return *all;
}

bool isIn(const usbdevfs_urb& urb) {
    return (urb.endpoint & 0x80) != 0;
}

void tell(int file, const Node& node) {
    uint8_t bytes[4096] = {};
    if (node.ended.empty()) {
        (void)!write(file, bytes, sizeof bytes);
    } else {
        (void)!read(node.reader, bytes, sizeof bytes);
    }
}

void end(Node& node, usbdevfs_urb* urb, int status, size_t length) {
    urb->status = status;
    urb->actual_length = static_cast<int>(length);
    std::erase(node.underWay, urb);
    node.ended.push_back(urb);
}

void moveOut(Kernel& all, Node& node, usbdevfs_urb* urb) {
    const auto* bytes = static_cast<const uint8_t*>(urb->buffer);
    const auto size = static_cast<size_t>(urb->buffer_length);
    const End outcome = std::exchange(all.nextEnd[0], std::nullopt).value_or(End{0, size});
    const Bytes data(bytes, bytes + outcome.length);
    all.taken.insert(all.taken.end(), data.begin(), data.end());
    end(node, urb, outcome.status, outcome.length);
    if (outcome.status != 0 || !all.answer) return;
    for (Bytes& packet : all.answer(data)) all.waiting.push_back(std::move(packet));
}

bool moveIn(Kernel& all, Node& node, usbdevfs_urb* urb) {
    if (const auto outcome = std::exchange(all.nextEnd[1], std::nullopt)) {
        end(node, urb, outcome->status, outcome->length);
        return true;
    }
    if (all.waiting.empty()) return false;
    std::ranges::copy(all.waiting.front(), static_cast<uint8_t*>(urb->buffer));
    end(node, urb, 0, all.waiting.front().size());
    all.waiting.pop_front();
    return true;
}

void move(Kernel& all, int file, Node& node) {
    if (!all.isHeldBack) {
        for (usbdevfs_urb* urb : std::deque(node.underWay)) {
            if (!isIn(*urb)) moveOut(all, node, urb);
        }
    }
    for (usbdevfs_urb* urb : std::deque(node.underWay)) {
        if (isIn(*urb) && !moveIn(all, node, urb)) break;
    }
    tell(file, node);
}

int fail(int error) {
    errno = error;
    return -1;
}

int claim(Kernel& all, int file, bool isTaking) {
    const bool isFree = all.driver.empty() || all.holder == file;
    if (!isFree && !isTaking) return fail(EBUSY);
    if (const auto former = all.nodes.find(all.holder); former != all.nodes.end() && all.holder != file) {
        for (usbdevfs_urb* urb : std::deque(former->second.underWay)) end(former->second, urb, -ENOENT, 0);
        tell(all.holder, former->second);
    }
    all.driver = "usbfs";
    all.holder = file;
    return 0;
}

int take(Kernel& all, int file, const usbdevfs_disconnect_claim& wanted) {
    const bool matches = all.driver == wanted.driver;
    const bool onlyThis = (wanted.flags & USBDEVFS_DISCONNECT_CLAIM_IF_DRIVER) != 0;
    return matches == onlyThis ? claim(all, file, true) : fail(EBUSY);
}

int release(Kernel& all, int file) {
    if (all.holder != file) return fail(EINVAL);
    all.driver.clear();
    all.holder = -1;
    return 0;
}

int submit(Kernel& all, int file, Node& node, usbdevfs_urb* urb) {
    if (all.holder != file && claim(all, file, false) != 0) return -1;
    node.underWay.push_back(urb);
    move(all, file, node);
    return 0;
}

int discard(int file, Node& node, usbdevfs_urb* urb) {
    if (std::ranges::find(node.underWay, urb) == node.underWay.end()) return fail(EINVAL);
    end(node, urb, -ENOENT, 0);
    tell(file, node);
    return 0;
}

int reap(int file, Node& node, usbdevfs_urb** urb) {
    if (node.ended.empty()) return fail(node.isGone ? ENODEV : EAGAIN);
    *urb = node.ended.front();
    node.ended.pop_front();
    if (node.ended.empty() && !node.isGone) tell(file, node);
    return 0;
}

int getDriver(const Kernel& all, usbdevfs_getdriver& driver) {
    if (all.driver.empty()) return fail(ENODATA);
    std::strcpy(driver.driver, all.driver.c_str());
    return 0;
}

int answerRequest(Kernel& all, int file, Node& node, unsigned long request, void* argument) {
    ++all.counts[request];
    if (node.isGone && request != USBDEVFS_REAPURBNDELAY) return fail(ENODEV);
    const auto failure = all.failures.find(request);
    if (failure != all.failures.end() && failure->second.before-- == 0) {
        const int error = failure->second.error;
        all.failures.erase(failure);
        return fail(error);
    }
    switch (request) {
        case USBDEVFS_CLAIMINTERFACE:
            return claim(all, file, false);
        case USBDEVFS_RELEASEINTERFACE:
            return release(all, file);
        case USBDEVFS_GETDRIVER:
            return getDriver(all, *static_cast<usbdevfs_getdriver*>(argument));
        case USBDEVFS_DISCONNECT_CLAIM:
            return take(all, file, *static_cast<usbdevfs_disconnect_claim*>(argument));
        case USBDEVFS_SUBMITURB:
            return submit(all, file, node, static_cast<usbdevfs_urb*>(argument));
        case USBDEVFS_DISCARDURB:
            return discard(file, node, static_cast<usbdevfs_urb*>(argument));
        case USBDEVFS_REAPURBNDELAY:
            return reap(file, node, static_cast<usbdevfs_urb**>(argument));
        default:
            return 0;
    }
}

void writeFile(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

int openNode(Kernel& all, const std::string& path) {
    const auto port = all.ports.find(path);
    if (port == all.ports.end()) return fail(ENOENT);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return -1;
    fcntl(ends[1], F_SETPIPE_SZ, 4096);
    Node& node = all.nodes[ends[1]] = {port->second, ends[0], {}, {}, false};
    tell(ends[1], node);
    return ends[1];
}

}  // namespace

unsigned bus() {
    return 1 + static_cast<unsigned>(getpid()) % 999;
}

Bytes goodDescriptors() {
    return {18,   1, 0, 2, 0, 0, 0, 64, 0x2C, 0x5A, 0x12, 0, 0, 1, 1, 2,  3, 1, 9, 2, 32,   0, 1,  1, 0,
            0xC0, 1, 9, 4, 0, 0, 2, 7,  1,    2,    0,    7, 5, 1, 2, 64, 0, 0, 7, 5, 0x82, 2, 64, 0, 0};
}

void reset() {
    Kernel& all = kernel();
    all.root = fs::temp_directory_path() / ("zprusb-usb-" + std::to_string(getpid()));
    fs::create_directories(all.root / "sys/bus/usb/devices");
    plug("1-1");
}

void plug(const std::string& port, const std::string& serial, const Bytes& descriptors) {
    Kernel& all = kernel();
    const std::lock_guard lock(all.mutex);
    const fs::path folder = all.root / "sys/bus/usb/devices" / port;
    fs::create_directories(folder);
    const unsigned address = ++all.address;
    writeFile(folder / "idVendor", "5a2c\n");
    writeFile(folder / "idProduct", "0012\n");
    writeFile(folder / "serial", serial + "\n");
    writeFile(folder / "busnum", std::to_string(bus()) + "\n");
    writeFile(folder / "devnum", std::to_string(address) + "\n");
    writeFile(folder / "bConfigurationValue", "1\n");
    writeFile(folder / "descriptors", std::string(descriptors.begin(), descriptors.end()));
    char path[32];
    std::snprintf(path, sizeof path, "/dev/bus/usb/%03u/%03u", bus(), address);
    all.ports[path] = port;
}

void unplug(const std::string& port) {
    Kernel& all = kernel();
    const std::lock_guard lock(all.mutex);
    fs::remove_all(all.root / "sys/bus/usb/devices" / port);
    std::erase_if(all.ports, [&](const auto& entry) { return entry.second == port; });
    for (auto& [file, node] : all.nodes) {
        if (node.port != port || node.isGone) continue;
        node.isGone = true;
        for (usbdevfs_urb* urb : std::deque(node.underWay)) end(node, urb, -ESHUTDOWN, 0);
        __real_close(std::exchange(node.reader, -1));  // which the writing end sees as an error
        if (all.holder == file) release(all, file);
    }
}

void forbid(const std::string& port) {
    const std::lock_guard lock(kernel().mutex);
    kernel().forbidden.insert(port);
}

void answerWith(std::function<Packets(const Bytes&)> answer) {
    const std::lock_guard lock(kernel().mutex);
    kernel().answer = std::move(answer);
}

Bytes taken() {
    const std::lock_guard lock(kernel().mutex);
    return kernel().taken;
}

void holdBack(bool holds) {
    Kernel& all = kernel();
    const std::lock_guard lock(all.mutex);
    all.isHeldBack = holds;
    for (auto& [file, node] : all.nodes) {
        if (!node.isGone) move(all, file, node);
    }
}

void failRequest(unsigned long request, unsigned before, int error) {
    const std::lock_guard lock(kernel().mutex);
    kernel().failures[request] = {before, error};
}

void failNothing() {
    const std::lock_guard lock(kernel().mutex);
    kernel().failures.clear();
}

void endNextTransfer(bool isInwards, int status, size_t length) {
    const std::lock_guard lock(kernel().mutex);
    kernel().nextEnd[isInwards] = {status, length};
}

void giveInterfaceTo(const std::string& driver) {
    const std::lock_guard lock(kernel().mutex);
    kernel().driver = driver;
    kernel().holder = -1;
}

void rob() {
    Kernel& all = kernel();
    const std::lock_guard lock(all.mutex);
    claim(all, -1, true);
    all.driver.clear();
}

unsigned count(unsigned long request) {
    const std::lock_guard lock(kernel().mutex);
    return kernel().counts[request];
}

}  // namespace fake

// What the linker gives the control library in place of the system's own.
extern "C" {

int __wrap_open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const int mode = va_arg(arguments, int);
    va_end(arguments);
    fake::Kernel& all = fake::kernel();
    if (std::string(path).starts_with("/sys/")) return __real_open((all.root.string() + path).c_str(), flags);
    if (!std::string(path).starts_with("/dev/bus/")) return __real_open(path, flags, mode);
    const std::lock_guard lock(all.mutex);
    return fake::openNode(all, path);
}

int __wrap_ioctl(int file, unsigned long request, ...) {
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    fake::Kernel& all = fake::kernel();
    const std::lock_guard lock(all.mutex);
    const auto node = all.nodes.find(file);
    if (node == all.nodes.end()) return __real_ioctl(file, request, argument);
    return fake::answerRequest(all, file, node->second, request, argument);
}

int __wrap_close(int file) {
    fake::Kernel& all = fake::kernel();
    const std::lock_guard lock(all.mutex);
    if (const auto node = all.nodes.find(file); node != all.nodes.end()) {
        if (node->second.reader >= 0) __real_close(node->second.reader);
        if (all.holder == file) fake::release(all, file);
        all.nodes.erase(node);
    }
    return __real_close(file);
}

int __wrap_faccessat(int folder, const char* path, int mode, int flags) {
    fake::Kernel& all = fake::kernel();
    const std::lock_guard lock(all.mutex);
    const auto port = all.ports.find(path);
    if (port == all.ports.end()) return __real_faccessat(folder, path, mode, flags);
    return all.forbidden.contains(port->second) ? fake::fail(EACCES) : 0;
}

DIR* __wrap_opendir(const char* path) {
    return __real_opendir((fake::kernel().root.string() + path).c_str());
}
}
