#include "bus.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/posix/descriptor.h"

namespace usb {
namespace {

constexpr char devices[] = "/sys/bus/usb/devices";
constexpr char vendorDigits[] = "5a2c";
constexpr char productDigits[] = "0012";
constexpr size_t descriptorsSize = 4096;

size_t readAttribute(const char* device, const char* name, char* text, size_t size) {
    char path[320];
    std::snprintf(path, sizeof path, "%s/%s/%s", devices, device, name);
    const control::Descriptor file(open(path, O_RDONLY | O_CLOEXEC));
    const ssize_t length = file.isOpen() ? read(file.get(), text, size) : 0;
    return length > 0 ? static_cast<size_t>(length) : 0;
}

template <size_t size>
void readText(const char* device, const char* name, char (&text)[size]) {
    size_t length = readAttribute(device, name, text, size - 1);
    while (length > 0 && text[length - 1] == '\n') --length;
    text[length] = '\0';
}

unsigned readNumber(const char* device, const char* name) {
    char text[16];
    readText(device, name, text);
    return static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

bool has(const char* device, const char* name, const char* digits) {
    char text[16];
    readText(device, name, text);
    return std::strcmp(text, digits) == 0;
}

// Parts of a printer's path are told apart by other characters.
void makePlain(char* text) {
    for (; *text != '\0'; ++text) {
        const char letter = *text;
        const bool isPlain = (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'z') ||
                             (letter >= 'A' && letter <= 'Z') || letter == '-' || letter == '.';
        if (!isPlain) *text = '_';
    }
}

void readEndpoints(ConnectedPrinter& printer) {
    char bytes[descriptorsSize];
    const size_t length = readAttribute(printer.port, "descriptors", bytes, sizeof bytes);
    printer.hasEndpoints = findEndpoints(reinterpret_cast<const uint8_t*>(bytes), length, printer.endpoints);
}

bool isPrinter(const char* device) {
    const bool isInterface = std::strchr(device, ':') != nullptr;
    return device[0] != '.' && !isInterface && std::strlen(device) < sizeof ConnectedPrinter::port &&
           has(device, "idVendor", vendorDigits) && has(device, "idProduct", productDigits);
}

ConnectedPrinter readPrinter(const char* device) {
    ConnectedPrinter printer;
    std::memcpy(printer.port, device, std::strlen(device) + 1);  // isPrinter() has looked at it
    readText(device, "serial", printer.serial);
    makePlain(printer.serial);
    printer.bus = readNumber(device, "busnum");
    printer.address = readNumber(device, "devnum");
    readEndpoints(printer);
    return printer;
}

}  // namespace

size_t findPrinters(ConnectedPrinter (&found)[maximumPrinters]) {
    DIR* folder = opendir(devices);
    if (folder == nullptr) return 0;
    size_t count = 0;
    while (const dirent* entry = readdir(folder)) {
        if (count == maximumPrinters) break;
        if (isPrinter(entry->d_name)) found[count++] = readPrinter(entry->d_name);
    }
    closedir(folder);
    std::sort(found, found + count, [](const ConnectedPrinter& one, const ConnectedPrinter& other) {
        return strverscmp(one.port, other.port) < 0;
    });
    return count;
}

void describeNode(const ConnectedPrinter& printer, char (&path)[nodePathSize]) {
    std::snprintf(path, sizeof path, "/dev/bus/usb/%03u/%03u", printer.bus % 1000, printer.address % 1000);
}

bool isUsable(const ConnectedPrinter& printer) {
    char path[nodePathSize];
    describeNode(printer, path);
    return printer.hasEndpoints && faccessat(AT_FDCWD, path, R_OK | W_OK, AT_EACCESS) == 0;
}

void findDriver(const ConnectedPrinter& printer, char (&driver)[32]) {
    char path[320], target[320];
    std::snprintf(path, sizeof path, "%s/%s:%u.%u/driver", devices, printer.port,
                  readNumber(printer.port, "bConfigurationValue"), unsigned{printer.endpoints.interface});
    const ssize_t length = readlink(path, target, sizeof target - 1);
    target[std::max<ssize_t>(length, 0)] = '\0';
    const char* slash = std::strrchr(target, '/');
    std::snprintf(driver, sizeof driver, "%.31s", slash != nullptr ? slash + 1 : "");
}

}  // namespace usb
