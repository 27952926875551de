#include "identity.h"

#include "api/entry_frame.h"
#include "call.h"
#include "device/device_table.h"
#include "failure.h"
#include "protocol/exchange.h"
#include "protocol/requests.h"

namespace tool {
namespace {

std::string orUnknown(const std::function<std::string()>& read) {
    try {
        const std::string text = read();
        return text.empty() ? "unknown" : text;
    } catch (const Refusal&) {
        return "unknown";
    }
}

/// The library asks for the model name only to see whether it is answered.
device::Result readModelName(device::PrinterObject& printer, protocol::Payload* payload) {
    return protocol::fetch(printer.connection, protocol::request::getModelName(), *payload);
}

device::Result readDeviceName(device::PrinterObject&, uint8_t number, char* name) {
    const device::DeviceEntry* entry = device::openEntry(number);
    return {entry != nullptr && entry->control->getDeviceName(entry->handle, name) == 1};
}

std::string firmwareVersion(const Printer& printer) {
    const auto components = decodeFirmware(printer.read(infoKind(ZPRUSB_INFO_FIRMWARE)));
    std::string text;
    for (const std::string& part : components.front().texts)
        text += (text.empty() || part.empty() ? "" : " ") + part;
    return text;
}

}  // namespace

std::string Identity::inWords() const {
    return "model " + model + ", name " + name + ", serial " + serial + ", firmware " + firmware;
}

Json Identity::inJson() const {
    return {{"model", model}, {"name", name}, {"serial", serial}, {"firmware", firmware}};
}

Identity identify(const Printer& printer) {
    return {orUnknown(modelName), orUnknown([&] { return printer.uniqueString(); }),
            orUnknown([&] { return serialNumber(printer.number()); }),
            orUnknown([&] { return firmwareVersion(printer); })};
}

std::string modelName() {
    protocol::Payload payload;
    call([&](uint16_t* code) { return api::call(api::lockFreeFrame, code, readModelName, &payload); });
    return textOf({payload.bytes.data(), payload.count});
}

/// The part of the device's name between the second and the third mark.
std::string serialNumber(uint8_t printer) {
    char name[1025] = "";
    call([&](uint16_t* code) { return api::call(api::lockedFrame, code, readDeviceName, printer, &name[0]); });
    const std::string path = name;
    const size_t start = path.find('#', path.find('#') + 1);
    if (start == std::string::npos) return "";
    const std::string serial = path.substr(start + 1, path.find('#', start + 1) - start - 1);
    return textOf({reinterpret_cast<const uint8_t*>(serial.data()), serial.size()});
}

}  // namespace tool
