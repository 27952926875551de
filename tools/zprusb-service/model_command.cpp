#include "commands.h"
#include "failure.h"
#include "identity.h"

namespace tool {

int run(const Arguments& common, const ModelArguments&) {
    const Printer printer(common.printer);
    modelName();  // that it isn't told is this command's failure
    const Identity identity = identify(printer);
    show({identity.inJson(), "Model     " + identity.model + "\nName      " + identity.name + "\nSerial    " +
                                 identity.serial + "\nFirmware  " + identity.firmware + "\n"},
         common.json);
    return exitSuccess;
}

}  // namespace tool
