#include <array>
#include <cstring>

#include "api/internal.h"
#include "call.h"
#include "commands.h"
#include "failure.h"
#include "identity.h"
#include "text.h"

namespace tool {
namespace {

View list(const Printer& printer) {
    std::array<uint8_t, ZPRUSB_MAX_PRINTERS * identifierSize> all;
    uint16_t none = 0;
    const uint32_t count = callLibrary(forAnswers, "zprusb_listupPrinterId(ids)", none,
                                       [&](uint16_t*) { return zprusb_listupPrinterId(all.data()); });
    View view{{{"printers", Json::array()}}, ""};
    for (size_t i = 0; i < count && i < printer.all().size(); ++i) {
        const uint8_t number = printer.all()[i].number;
        const std::string id = hexOf(ByteView(all).subspan(i * identifierSize, identifierSize), "");
        view.data["printers"].push_back({{"printer", number}, {"identifier", id}});
        view.text += std::to_string(number) + "  " + id + "\n";
    }
    return view;
}

View select(const Bytes& id) {
    uint64_t number = 0;
    std::memcpy(&number, id.data(), sizeof number);
    const std::string digits = hexOf(id, "");
    call("zprusb_selectPrinterId(0x" + digits + ", &code)",
         [=](uint16_t* code) { return uint32_t{zprusb_selectPrinterId(number, code) != nullptr}; });
    const std::string model = modelName();
    return {{{"identifier", digits}, {"model", model}},
            digits + " selects a printer of model " + model + ".\n"};
}

}  // namespace

int run(const Arguments& common, const IdentifiersArguments& arguments) {
    if (!arguments.bytes.empty() && arguments.bytes.size() != identifierSize)
        throw WrongUsage("An identifier has 8 bytes, not " + std::to_string(arguments.bytes.size()) + ".");
    const Printer printer(common.printer);
    show(arguments.bytes.empty() ? list(printer) : select(arguments.bytes), common.json);
    return exitSuccess;
}

}  // namespace tool
