#include "api/internal.h"
#include "commands.h"
#include "dump.h"
#include "failure.h"
#include "printer.h"
#include "result_text.h"

namespace tool {
namespace {

void start(const DiagnoseArguments& diagnosis) {
    uint16_t code = 0;
    if (zprusb_selfDiagnosis(diagnosis.kind, diagnosis.first, diagnosis.second, &code) == 1) return;
    throw Refusal("The diagnosis did not start: " + resultSentence(code));
}

Bytes results() {
    Bytes bytes(ZPRUSB_DIAGNOSIS_RESULTS_SIZE);
    auto length = static_cast<uint32_t>(bytes.size());
    uint16_t code = 0;
    require(zprusb_getSelfDiagnosisResults(bytes.data(), &length, &code), code);
    bytes.resize(length);
    return bytes;
}

}  // namespace

int run(const Arguments& common, const DiagnoseArguments& arguments) {
    if (!arguments.resultsOnly && arguments.kind == 0)
        throw WrongUsage("Name the kind of the diagnosis, or say --results-only.");
    const Printer printer(common.printer);
    if (!arguments.resultsOnly) start(arguments);
    show(dumpOf(0, results()), common.json);
    return exitSuccess;
}

}  // namespace tool
