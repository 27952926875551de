#include <algorithm>

#include "commands.h"
#include "failure.h"
#include "info_kinds.h"
#include "printer.h"
#include "view.h"

namespace tool {
namespace {

bool wanted(const InfoArguments& arguments, const InfoKind& kind) {
    return arguments.kinds.empty() || std::ranges::find(arguments.kinds, kind.word) != arguments.kinds.end();
}

}  // namespace

int run(const CommonArguments& common, const InfoArguments& arguments) {
    const Printer printer(common.printer);
    View view{{{"printer", printer.number()}}, ""};
    for (const InfoKind& kind : infoKinds()) {
        if (!wanted(arguments, kind)) continue;
        const Bytes record = printer.read(kind);
        const View part = arguments.raw ? viewOf(record) : kind.view(record);
        view.data[kind.word] = part.data;
        view.text += kind.word + "\n" + part.text;
    }
    show(view, common.json);
    return exitSuccess;
}

}  // namespace tool
