/// The kernel's file of one USB device, and what can be asked of it.
#pragma once

#include <linux/usbdevice_fs.h>

#include "bus.h"
#include "common/posix/descriptor.h"

namespace usb {

constexpr size_t transferSize = 4096;

/// Bytes on their way to or from a printer. It stays where it is while it is under way.
struct Transfer {
    uint8_t buffer[transferSize]{};
    bool isUnderWay = false;
    uint8_t endpoint = 0;
    size_t size = 0;    // what was asked for
    size_t length = 0;  // what came, or went
    int status = 0;     // 0, or the negative of an error number

    /// What the kernel has of it. Its type ends with an array without a length, which no other type may
    /// contain.
    usbdevfs_urb* request() { return reinterpret_cast<usbdevfs_urb*>(request_); }

private:
    alignas(usbdevfs_urb) unsigned char request_[sizeof(usbdevfs_urb)]{};
};

enum class Claim { done, busy, gone };

class Node {
public:
    /// Opening claims nothing, and others may have the device open as well.
    bool open(const ConnectedPrinter& printer);

    int descriptor() const { return file_.get(); }

    /// From any thread.
    bool isGone() const;

    Claim claim();

    /// Whether another program has the interface, and not one of the kernel's drivers.
    bool isUsedByProgram() const;

    /// Takes the interface from the kernel's driver that has it, or from the program that has it.
    bool takeFromDriver();
    bool takeFromProgram();

    /// Harmless when the interface was taken away.
    void release();

    bool submitOut(Transfer& transfer, size_t length);
    bool submitIn(Transfer& transfer);
    void discard(Transfer& transfer);
    void clearHalt(const Transfer& transfer);

    /// @return a transfer that has ended, or null. It is not under way any more.
    Transfer* reap();

private:
    bool take(uint32_t flags);
    bool submit(Transfer& transfer, uint8_t endpoint, size_t length);

    control::Descriptor file_;
    Endpoints endpoints_;
};

}  // namespace usb
