#include <algorithm>

#include "api/internal.h"
#include "commands.h"
#include "dump.h"
#include "failure.h"
#include "file.h"
#include "printer.h"
#include "text.h"

namespace tool {
namespace {

constexpr size_t memorySize = 256;
constexpr size_t largestTransfer = 255;

void checkRange(uint8_t address, size_t count) {
    if (address + count > memorySize)
        throw WrongUsage(counted(count, "byte", "bytes") + " from address " + hexadecimal(address) +
                         " on would pass the memory's end at 0xff.");
}

Bytes readMemory(uint8_t address, size_t count) {
    Bytes memory(ZPRUSB_MAINTENANCE_READ_SIZE);
    uint16_t code = 0;
    require(zprusb_getEepromMaintenance(address, memory.data(), static_cast<uint8_t>(count), &code), code);
    memory.resize(count);
    return memory;
}

Bytes bytesToWrite(const EepromWriteArguments& arguments) {
    if (!arguments.bytes.empty()) return arguments.bytes;
    if (arguments.file.empty()) throw WrongUsage("Say which bytes to write, or name a --file with them.");
    Bytes bytes = readFile(arguments.file, 1 << 20);
    if (bytes.empty() || bytes.size() > largestTransfer)
        refuseFile(arguments.file, "does not hold 1 to 255 bytes.");
    return bytes;
}

}  // namespace

int run(const Arguments& common, const EepromReadArguments& arguments) {
    checkRange(arguments.address, arguments.count);
    const Printer printer(common.printer);
    const Bytes memory = readMemory(arguments.address, arguments.count);
    View view = dumpOf(arguments.address, memory);
    if (!arguments.out.empty()) {
        writeFile(arguments.out, memory);
        view.text = "Wrote " + counted(memory.size(), "byte", "bytes") + " into " + arguments.out + ".\n";
    }
    show(view, common.json);
    return exitSuccess;
}

int run(const Arguments& common, const EepromWriteArguments& arguments) {
    const Bytes bytes = bytesToWrite(arguments);
    const uint8_t address = arguments.address;
    const std::string place = counted(bytes.size(), "byte", "bytes") + " of maintenance memory from address " +
                              hexadecimal(address) + " on";
    checkRange(address, bytes.size());
    confirm(common, "overwrite " + place);
    const Printer printer(common.printer);
    uint16_t code = 0;
    require(zprusb_setEepromMaintenance(address, bytes.data(), static_cast<uint8_t>(bytes.size()), &code),
            code);
    View view = dumpOf(address, readMemory(address, bytes.size()));
    if (view.data["bytes"] != hexOf(bytes, ""))
        throw Refusal("The printer took the bytes but did not keep them; it holds " +
                      view.data["bytes"].get<std::string>() + ".");
    view.text = "Wrote and verified " + place + ".\n";
    show(view, common.json);
    return exitSuccess;
}

}  // namespace tool
