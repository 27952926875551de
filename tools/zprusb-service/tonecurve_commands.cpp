#include "api/internal.h"
#include "call.h"
#include "commands.h"
#include "failure.h"
#include "file.h"
#include "printer_to_change.h"
#include "view.h"

namespace tool {
namespace {

constexpr uint8_t forget = 0;

int setToneCurve(const Arguments& common, const std::string& deed, uint8_t mode, const Bytes& curve,
                 const std::string& done) {
    const PrinterToChange printer(common, deed);
    call("zprusb_setToneCurve", zprusb_setToneCurve, mode, curve.data());
    show({{{"printer", printer->number()}, {"curve", mode}}, done + "\n"}, common.json);
    return exitSuccess;
}

}  // namespace

int run(const Arguments& common, const ToneCurveLoadArguments& arguments) {
    const Bytes curve = readFile(arguments.file, 1 << 20);
    if (curve.size() != ZPRUSB_TONE_CURVE_SIZE)
        refuseFile(arguments.file, "is no tone curve: it has " + std::to_string(curve.size()) +
                                       " bytes instead of " + std::to_string(ZPRUSB_TONE_CURVE_SIZE) + ".");
    const std::string name = "tone curve " + std::to_string(arguments.curve);
    return setToneCurve(common, "overwrite " + name, arguments.curve, curve, "Loaded " + name + ".");
}

int run(const Arguments& common, const ToneCurveResetArguments&) {
    return setToneCurve(common, "make the printer forget its tone curves", forget, {},
                        "The printer has forgotten its tone curves.");
}

}  // namespace tool
