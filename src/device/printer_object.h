#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "device/api_lock.h"
#include "device/control_library.h"
#include "device/transport.h"
#include "platform/named_mutex.h"

namespace device {

constexpr uint32_t deviceCount = 128;  // entries of the device table
constexpr uint8_t noDeviceIndex = 255;
constexpr uint32_t sectionCount = ZPRUSB_MAX_SECTION;

using PrinterId = std::array<uint8_t, 8>;
using PrinterLabel = std::array<char, ZPRUSB_LABEL_SIZE>;

constexpr PrinterId filledPrinterId(uint8_t byte) {
    return {byte, byte, byte, byte, byte, byte, byte, byte};
}

/// A leaf: nothing is waited for while it is held. It guards the mutexes of the device table and those that
/// pages keep.
inline constinit platform::Lock deviceTableLock;
using HoldingTable = platform::Holding<platform::Lock>;

/// What the page commands carry.
struct PageParameters {
    std::atomic<uint16_t> copies{1};          // also set by entry points that run without the API lock
    uint16_t pageId GUARDED_BY(apiLock) = 0;  // device index x 256 + job number
    uint8_t mediaCode GUARDED_BY(apiLock) = 0;
    uint32_t printWidth GUARDED_BY(apiLock) = 0;
    uint32_t printLength GUARDED_BY(apiLock) = 0;
    uint32_t sectionWidth GUARDED_BY(apiLock) = 0;
    std::array<uint32_t, sectionCount> sectionLengths GUARDED_BY(apiLock){};
    uint8_t sectionIndex GUARDED_BY(apiLock) = 0;  // 0: the whole print; n: section n
    uint8_t printOption20 GUARDED_BY(apiLock) = 1;
    uint16_t printOption21 GUARDED_BY(apiLock) = 200;
    uint16_t printOption22 GUARDED_BY(apiLock) = 200;
};

/// Working memory that an object has from its opening on, which fails with 1000 when there is too little. Page
/// data go out straight from the caller's bytes; so far only the start of a page touches any of it.
struct WorkingBuffers {
    static constexpr uint32_t imageSize = 0x20000;
    static constexpr uint32_t pageSize = 12294;
    static constexpr uint32_t workSize = 4096;
    uint8_t* image = nullptr;
    uint8_t* page = nullptr;
    uint32_t pageFill = 0;
    uint8_t* work = nullptr;
};

/// The firmware update of an object. Its operations run without the API lock.
struct UpdateSession {
    std::atomic<bool> allowed{false};    // whether the object was opened for update
    std::atomic<uint32_t> bytesSent{0};  // since the printer was last asked to take a transfer
};

/// One printer as seen by one caller thread. Only api/ opens one and tears it down; the operations on it are
/// free functions in the folder of their subject.
struct PrinterObject {
    bool opened GUARDED_BY(apiLock) = false;
    const ControlLibrary* control GUARDED_BY(apiLock) = nullptr;  // a use of it, from the first opening on
    WorkingBuffers buffers GUARDED_BY(apiLock);
    Connection connection;
    std::atomic<uint8_t> deviceIndex{noDeviceIndex};
    PrinterId selectedPrinterId GUARDED_BY(apiLock) = filledPrinterId(0xFF);
    PrinterLabel selectedPrinterLabel GUARDED_BY(apiLock){};
    PageParameters page;
    UpdateSession update;
    uint16_t scanLimit GUARDED_BY(apiLock) = deviceCount;  // device numbers that an enumeration probes
    uint16_t openedCount GUARDED_BY(apiLock) = 0;          // devices that the last enumeration opened
    // What the last page start reserved, and at which opening of the device.
    platform::NamedMutex* pageMutex GUARDED_BY(deviceTableLock) = nullptr;
    uint32_t pageOpening GUARDED_BY(deviceTableLock) = 0;
    uint32_t uses = 0;  // holders of this object; guarded by the object table's lock, which isn't known here
};

}  // namespace device
