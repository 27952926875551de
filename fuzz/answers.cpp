// Lets a printer answer with any bytes. The first byte of the input chooses the operation; the rest are the
// answers, each behind its length in two bytes. When there are no more, the printer is gone.
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "device/device_table.h"
#include "platform/thread.h"
#include "printer/actions.h"
#include "printer/diagnosis.h"
#include "printer/information.h"
#include "printer/maintenance.h"
#include "printer/media.h"
#include "printer/page.h"
#include "printer/raw.h"
#include "printer/settings.h"
#include "printer/status.h"
#include "protocol/service_sizes.h"
#include "require.h"

namespace {

using device::PrinterObject;

/// The room that an operation is promised, on the heap, where a byte beyond it is seen.
struct Room {
    explicit Room(size_t size) : bytes(size) {}
    operator uint8_t*() { return bytes.data(); }
    std::vector<uint8_t> bytes;
};

/// What a caller who has more than is needed says about his buffer.
constexpr uint32_t claimedRoom = 1000;

template <uint16_t tag, uint32_t size>
void getInfo(PrinterObject& printer) {
    uint32_t length = claimedRoom;
    Room room(size);
    if (printer::getPrinterInfo(printer, tag, room, &length)) require(length == size);
}

void checkStatus(PrinterObject& printer) {
    const device::Result result = printer::queryStatus(printer);
    require(result.success == (result.code == ZPRUSB_SUCCESS));
}

void printPage(PrinterObject& printer) {
    uint16_t pageId = 0;
    if (printer::startPage(printer, &pageId)) (void)printer::endPage(printer);
}

using Operation = void (*)(PrinterObject& printer);

const uint8_t data[] = {1, 2};

// The macro's rows end with a comma, which the formatter takes for the end of everything.
// clang-format off
#define GET_INFO(tag, name, size, content) getInfo<tag, size>,
constexpr Operation operations[] = {
    ZPRUSB_INFO_TAGS(GET_INFO)
    checkStatus,
    printPage,
    [](PrinterObject& printer) { (void)printer::checkMediaInfo(printer, 0xF1, 15240, 10160); },
    [](PrinterObject& printer) { (void)printer::checkMediaInfo(printer, 0xE0, 15240, 30000); },
    [](PrinterObject& printer) { (void)printer::blinkLed(printer); },
    [](PrinterObject& printer) {
        Room room(ZPRUSB_MAX_ANSWER_PAYLOAD_SIZE);
        (void)printer::selfDiagnosisData(printer, 1, 2, 3, room);
    },
    [](PrinterObject& printer) {
        uint32_t length = claimedRoom;
        Room room(ZPRUSB_DIAGNOSIS_RESULTS_SIZE);
        (void)printer::getSelfDiagnosisResults(printer, room, &length);
    },
    [](PrinterObject& printer) {
        Room room(ZPRUSB_MAINTENANCE_READ_SIZE);
        (void)printer::getEepromMaintenance(printer, 0, room, 255);
    },
    [](PrinterObject& printer) { (void)printer::setEepromMaintenance(printer, 0, data, sizeof data); },
    [](PrinterObject& printer) {
        uint8_t count = 0;
        Room room(ZPRUSB_MAX_ANSWER_PAYLOAD_SIZE);
        (void)printer::universalCommand(printer, data, sizeof data, room, &count);
    },
    [](PrinterObject& printer) { (void)printer::getModelName(printer); },
    [](PrinterObject& printer) {
        Room room(ZPRUSB_MAINTENANCE_DATA_SIZE);
        (void)printer::getMaintenanceData(printer, 1, 2, room);
    },
    [](PrinterObject& printer) {
        uint32_t count = 0;
        Room room(ZPRUSB_MAX_ANSWER_SIZE);
        (void)printer::transferRaw(printer, data, sizeof data, room, &count);
    },
    [](PrinterObject& printer) {
        Room room(ZPRUSB_MAINTENANCE_READ_SIZE);
        (void)printer::readRaw(printer, room);
    },
};
// clang-format on

/// A printer whose requests nobody reads.
PrinterObject& thePrinter() {
    static PrinterObject printer;
    if (printer.opened) return printer;
    const std::string name = "zprusb-fuzz-" + std::to_string(platform::currentProcessId());
    device::deviceTable[0].handle = 0;
    device::deviceTable[0].mutex = platform::openNamedMutex(name.c_str());
    printer.deviceIndex = 0;
    printer.connection.writer.pipe = static_cast<platform::PipeHandle>(open("/dev/null", O_WRONLY));
    printer.buffers.image = static_cast<uint8_t*>(std::malloc(printer.buffers.imageSize));
    printer.buffers.page = static_cast<uint8_t*>(std::malloc(printer.buffers.pageSize));
    printer.opened = true;
    return printer;
}

void sendAnswers(int pipe, std::span<const uint8_t> input) {
    while (input.size() > 2) {
        const size_t length = std::min(input[0] * size_t{0x100} + input[1], input.size() - 2);
        if (send(pipe, input.data() + 2, length, MSG_DONTWAIT) < 0) return;
        input = input.subspan(2 + length);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    if (size == 0) return 0;
    int ends[2];
    require(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) == 0);
    sendAnswers(ends[0], {bytes + 1, size - 1});
    close(ends[0]);
    PrinterObject& printer = thePrinter();
    printer.connection.reader.pipe = static_cast<platform::PipeHandle>(ends[1]);
    operations[bytes[0] % std::size(operations)](printer);
    close(ends[1]);
    return 0;
}
