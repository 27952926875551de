#include "examination.h"

#include <dirent.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bus.h"
#include "common/posix/descriptor.h"
#include "mark.h"

namespace usb {
namespace {

class Text {
public:
    Text(char* place, size_t size) : place_(place), size_(size) {
        if (size > 0) place[0] = '\0';
    }

    [[gnu::format(printf, 2, 3)]] void add(const char* format, ...) {
        va_list arguments;
        va_start(arguments, format);
        const int length = std::vsnprintf(place_ + length_, size_ - length_, format, arguments);
        va_end(arguments);
        length_ = std::min(length_ + static_cast<size_t>(std::max(length, 0)), size_ > 0 ? size_ - 1 : 0);
    }

private:
    char* place_;
    size_t size_;
    size_t length_ = 0;
};

bool hasOpen(const char* process, const char* node) {
    char folder[64], link[340], target[64];
    std::snprintf(folder, sizeof folder, "/proc/%.20s/fd", process);
    DIR* descriptors = opendir(folder);
    if (descriptors == nullptr) return false;
    bool found = false;
    while (const dirent* entry = readdir(descriptors)) {
        std::snprintf(link, sizeof link, "%s/%s", folder, entry->d_name);
        const ssize_t length = readlink(link, target, sizeof target - 1);
        target[std::max<ssize_t>(length, 0)] = '\0';
        if (std::strcmp(target, node) == 0) found = true;
    }
    closedir(descriptors);
    return found;
}

// All but this one; the holder is among them, unless it is hidden from this user.
void addProcessesWith(const char* node, Text& text) {
    DIR* processes = opendir("/proc");
    if (processes == nullptr) return;
    while (const dirent* entry = readdir(processes)) {
        const int process = std::atoi(entry->d_name);
        if (process > 0 && process != getpid() && hasOpen(entry->d_name, node)) text.add(" %d", process);
    }
    closedir(processes);
}

void addPermission(const ConnectedPrinter& printer, const char* node, Text& text) {
    struct stat status;
    if (!printer.hasEndpoints) {
        text.add("its descriptors are not those of a printer");
    } else if (isUsable(printer)) {
        text.add("may be used");
    } else if (stat(node, &status) != 0) {
        text.add("%s: %s", node, std::strerror(errno));
    } else {
        const group* owners = getgrgid(status.st_gid);
        text.add(
            "no permission: %s may be opened by group %s (mode %04o); the rule 70-zprusb.rules gives it to "
            "group "
            "lp and whoever is logged in at the computer",
            node, owners != nullptr ? owners->gr_name : "without a name", status.st_mode & 07777);
    }
}

void addHolder(const ConnectedPrinter& printer, const char* node, Text& text) {
    char driver[32];
    findDriver(printer, driver);
    if (driver[0] == '\0') return text.add("nobody holds its interface");
    if (std::strcmp(driver, "usbfs") != 0)
        return text.add("the kernel's %s holds its interface until it is used", driver);
    if (Mark(printer).isSetElsewhere())
        return text.add("a program of this library holds its interface, and shares it");
    text.add(
        "another program holds its interface, which is not taken from it; the device is open in the processes");
    addProcessesWith(node, text);
}

}  // namespace
}  // namespace usb

uint32_t zprusbusb_examine(char* place, uint32_t size) {
    usb::ConnectedPrinter printers[usb::maximumPrinters];
    const size_t count = usb::findPrinters(printers);
    usb::Text text(place, size);
    for (size_t i = 0; i < count; ++i) {
        char node[usb::nodePathSize];
        usb::describeNode(printers[i], node);
        text.add("port %s, serial %s: ", printers[i].port,
                 printers[i].serial[0] != '\0' ? printers[i].serial : "none");
        usb::addPermission(printers[i], node, text);
        text.add("; ");
        usb::addHolder(printers[i], node, text);
        text.add(".\n");
    }
    return static_cast<uint32_t>(count);
}
