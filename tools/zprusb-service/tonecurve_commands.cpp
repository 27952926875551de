#include "api/internal.h"
#include "commands.h"
#include "failure.h"
#include "file.h"
#include "printer.h"
#include "view.h"

namespace tool {
namespace {

constexpr uint8_t forget = 0;

int setToneCurve(const Arguments& common, uint8_t mode, const Bytes& curve, const std::string& done) {
    const Printer printer(common.printer);
    uint16_t code = 0;
    require(zprusb_setToneCurve(mode, curve.data(), &code), code);
    show({{{"printer", printer.number()}, {"curve", mode}}, done + "\n"}, common.json);
    return exitSuccess;
}

}  // namespace

int run(const Arguments& common, const ToneCurveLoadArguments& arguments) {
    const Bytes curve = readFile(arguments.file, 1 << 20);
    if (curve.size() != ZPRUSB_TONE_CURVE_SIZE)
        refuseFile(arguments.file, "is no tone curve: it has " + std::to_string(curve.size()) +
                                       " bytes instead of " + std::to_string(ZPRUSB_TONE_CURVE_SIZE) + ".");
    const std::string name = "tone curve " + std::to_string(arguments.curve);
    confirm(common, "overwrite " + name);
    return setToneCurve(common, arguments.curve, curve, "Loaded " + name + ".");
}

int run(const Arguments& common, const ToneCurveResetArguments&) {
    confirm(common, "make the printer forget its tone curves");
    return setToneCurve(common, forget, {}, "The printer has forgotten its tone curves.");
}

}  // namespace tool
