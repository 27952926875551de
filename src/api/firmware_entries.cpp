/// Entry points of the firmware update: each is its frame and its operation.
#include <utility>

#include "api/entry_frame.h"
#include "api/internal.h"
#include "firmware/update.h"

using api::call;
using api::lockFreeFrame;
using device::PrinterObject;

uint8_t* zprusb_loadUpdateImage(const char* path, uint32_t* imageLength, uint32_t* imageByteSum,
                                uint32_t* startAddress, uint32_t* endAddress, uint16_t* resultCode) {
    uint8_t* image = nullptr;
    call(lockFreeFrame, resultCode, [&](PrinterObject& printer) {
        return firmware::loadUpdateImage(printer, path, {imageLength, imageByteSum, startAddress, endAddress},
                                         image);
    });
    return image;
}

void zprusb_freeUpdateImage(uint8_t* image) {
    call(lockFreeFrame, nullptr, [&](PrinterObject&) {
        firmware::freeUpdateImage(image);
        return device::done;
    });
}

uint32_t zprusb_checkUpdateTarget(uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, firmware::checkUpdateTarget);
}

uint32_t zprusb_startUpdate(uint8_t target, uint32_t start, uint32_t length, uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, firmware::startUpdate, target, start, length);
}

uint32_t zprusb_writeUpdateData(const uint8_t* data, uint32_t* length, uint16_t* resultCode) {
    // Whatever the call fails of, it has sent nothing until it has.
    const uint32_t wanted = length != nullptr ? std::exchange(*length, 0) : 0;
    return call(lockFreeFrame, resultCode, firmware::writeUpdateData, data, wanted, length);
}
