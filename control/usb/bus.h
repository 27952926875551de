/// The printers that are plugged in, as the kernel lists them. Looking asks nothing of a printer.
#pragma once

#include "descriptors.h"

namespace usb {

struct ConnectedPrinter {
    char port[32] = "";    // the place on the bus, such as 1-2.3
    char serial[64] = "";  // letters, digits, '.', '-' and '_'; empty when it has none
    unsigned bus = 0;
    unsigned address = 0;  // another one each time it is plugged in
    Endpoints endpoints;
    bool hasEndpoints = false;
};

constexpr size_t maximumPrinters = 128;
constexpr size_t nodePathSize = 32;

/// @param found receives the printers in the order of their ports.
/// @return how many.
size_t findPrinters(ConnectedPrinter (&found)[maximumPrinters]);

/// The file by which the kernel gives programs the device.
void describeNode(const ConnectedPrinter& printer, char (&path)[nodePathSize]);

/// Whether this process may use the device, and it is what its digits promise.
bool isUsable(const ConnectedPrinter& printer);

/// @param driver receives the name of the driver that has the interface, "usbfs" for a program's; empty for
/// none.
void findDriver(const ConnectedPrinter& printer, char (&driver)[32]);

}  // namespace usb
