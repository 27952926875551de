#include "node.h"

#include <fcntl.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <cstring>

namespace usb {
namespace {

constexpr char driverOfPrograms[] = "usbfs";

}  // namespace

bool Node::open(const ConnectedPrinter& printer) {
    char path[nodePathSize];
    describeNode(printer, path);
    endpoints_ = printer.endpoints;
    file_ = control::Descriptor(::open(path, O_RDWR | O_CLOEXEC));
    return file_.isOpen();
}

bool Node::isGone() const {
    uint32_t capabilities;
    return ioctl(file_.get(), USBDEVFS_GET_CAPABILITIES, &capabilities) != 0 && errno == ENODEV;
}

Claim Node::claim() {
    unsigned interface = endpoints_.interface;
    if (ioctl(file_.get(), USBDEVFS_CLAIMINTERFACE, &interface) == 0) return Claim::done;
    return errno == ENODEV ? Claim::gone : Claim::busy;
}

bool Node::isUsedByProgram() const {
    usbdevfs_getdriver driver{};
    driver.interface = endpoints_.interface;
    return ioctl(file_.get(), USBDEVFS_GETDRIVER, &driver) == 0 &&
           std::strcmp(driver.driver, driverOfPrograms) == 0;
}

// One step for the kernel: nobody else can come in between. Only the driver that the flags mean loses it.
bool Node::take(uint32_t flags) {
    usbdevfs_disconnect_claim request{};
    request.interface = endpoints_.interface;
    request.flags = flags;
    std::memcpy(request.driver, driverOfPrograms, sizeof driverOfPrograms);
    return ioctl(file_.get(), USBDEVFS_DISCONNECT_CLAIM, &request) == 0;
}

bool Node::takeFromDriver() {
    return take(USBDEVFS_DISCONNECT_CLAIM_EXCEPT_DRIVER);
}

bool Node::takeFromProgram() {
    return take(USBDEVFS_DISCONNECT_CLAIM_IF_DRIVER);
}

void Node::release() {
    unsigned interface = endpoints_.interface;
    ioctl(file_.get(), USBDEVFS_RELEASEINTERFACE, &interface);
}

bool Node::submit(Transfer& transfer, uint8_t endpoint, size_t size) {
    transfer.endpoint = endpoint;
    transfer.size = size;
    usbdevfs_urb* request = transfer.request();
    *request = {};
    request->type = USBDEVFS_URB_TYPE_BULK;
    request->endpoint = endpoint;
    request->buffer = transfer.buffer;
    request->buffer_length = static_cast<int>(size);
    request->usercontext = &transfer;
    transfer.isUnderWay = ioctl(file_.get(), USBDEVFS_SUBMITURB, request) == 0;
    return transfer.isUnderWay;
}

bool Node::submitOut(Transfer& transfer, size_t length) {
    return submit(transfer, endpoints_.out, length);
}

bool Node::submitIn(Transfer& transfer) {
    return submit(transfer, endpoints_.in, endpoints_.inPacket);
}

void Node::discard(Transfer& transfer) {
    if (transfer.isUnderWay) ioctl(file_.get(), USBDEVFS_DISCARDURB, transfer.request());
}

void Node::clearHalt(const Transfer& transfer) {
    unsigned endpoint = transfer.endpoint;
    ioctl(file_.get(), USBDEVFS_CLEAR_HALT, &endpoint);
}

Transfer* Node::reap() {
    usbdevfs_urb* request = nullptr;
    if (ioctl(file_.get(), USBDEVFS_REAPURBNDELAY, &request) != 0) return nullptr;
    auto* transfer = static_cast<Transfer*>(request->usercontext);
    transfer->isUnderWay = false;
    transfer->status = request->status;
    transfer->length = static_cast<size_t>(request->actual_length);
    return transfer;
}

}  // namespace usb
