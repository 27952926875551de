#include <filesystem>

#include "api/internal.h"
#include "call.h"
#include "commands.h"
#include "dump.h"
#include "failure.h"
#include "file.h"
#include "printer_to_change.h"
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
    call("zprusb_getEepromMaintenance", zprusb_getEepromMaintenance, address, memory.data(),
         static_cast<uint8_t>(count));
    memory.resize(count);
    return memory;
}

/// What one request does not hold is read or written in two halves.
constexpr uint8_t halves[] = {0, 128};
constexpr size_t halfSize = 128;

Bytes readAll() {
    Bytes memory;
    for (const uint8_t address : halves) {
        const Bytes half = readMemory(address, halfSize);
        memory.insert(memory.end(), half.begin(), half.end());
    }
    return memory;
}

void writeMemory(uint8_t address, ByteView bytes) {
    call("zprusb_setEepromMaintenance", zprusb_setEepromMaintenance, address, bytes.data(),
         static_cast<uint8_t>(bytes.size()));
}

/// The first of the names that no file has.
std::string unusedName(const std::string& start) {
    std::string name = start;
    for (int number = 2; std::filesystem::exists(std::u8string(name.begin(), name.end())); ++number)
        name = start + "-" + std::to_string(number);
    return name;
}

void restore(const Bytes& wanted, const std::string& kept) {
    try {
        for (const uint8_t address : halves) writeMemory(address, ByteView(wanted).subspan(address, halfSize));
        if (readAll() == wanted) return;
    } catch (const Refusal& refusal) {
        throw Refusal(
            "The memory is not restored, and may hold a part of the new contents; the old ones are in '" +
                kept + "': " + refusal.what(),
            refusal.code());
    }
    throw Refusal("The printer took the bytes but did not keep them all; the old contents are in '" + kept +
                  "'.");
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
    const PrinterToChange printer(common, "overwrite " + place);
    writeMemory(address, bytes);
    View view = dumpOf(address, readMemory(address, bytes.size()));
    if (view.data["bytes"] != hexOf(bytes, ""))
        throw Refusal("The printer took the bytes but did not keep them; it holds " +
                      view.data["bytes"].get<std::string>() + ".");
    view.text = "Wrote and verified " + place + ".\n";
    show(view, common.json);
    return exitSuccess;
}

int run(const Arguments& common, const EepromDumpArguments& arguments) {
    const Printer printer(common.printer);
    writeFile(arguments.file, readAll());
    show({{{"printer", printer.number()}, {"file", arguments.file}, {"bytes", memorySize}},
          "Wrote all 256 bytes of maintenance memory into " + arguments.file + ".\n"},
         common.json);
    return exitSuccess;
}

int run(const Arguments& common, const EepromRestoreArguments& arguments) {
    const Bytes wanted = readFile(arguments.file, 1 << 20);
    if (wanted.size() != memorySize)
        refuseFile(arguments.file, "does not hold the 256 bytes of a maintenance memory but " +
                                       std::to_string(wanted.size()) + ".");
    const PrinterToChange printer(common,
                                  "overwrite all 256 bytes of maintenance memory, the counters in it too");
    const std::string kept = unusedName(arguments.file + ".before");
    writeFile(kept, readAll());
    restore(wanted, kept);
    show({{{"printer", printer->number()}, {"file", arguments.file}, {"kept", kept}},
          "Wrote and verified all 256 bytes of maintenance memory. The old contents are in " + kept + ".\n"},
         common.json);
    return exitSuccess;
}

}  // namespace tool
