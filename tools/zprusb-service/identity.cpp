#include "identity.h"

#include "api/entry_frame.h"
#include "call.h"
#include "control_library.h"
#include "failure.h"
#include "protocol/exchange.h"
#include "protocol/requests.h"
#include "text.h"

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
            orUnknown([&] { return harmless(serialOf(printer.number())); }),
            orUnknown([&] { return firmwareVersion(printer); })};
}

std::string modelName() {
    protocol::Payload payload;
    call("readModelName(&payload)",
         [&](uint16_t* code) { return api::call(api::lockFreeFrame, code, readModelName, &payload); });
    return textOf({payload.bytes.data(), payload.count});
}

}  // namespace tool
