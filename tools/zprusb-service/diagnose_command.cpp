#include "api/internal.h"
#include "call.h"
#include "commands.h"
#include "dump.h"
#include "failure.h"
#include "printer_to_change.h"
#include "result_text.h"
#include "text.h"

namespace tool {
namespace {

void start(const DiagnoseArguments& diagnosis) {
    const uint16_t code =
        codeOf("zprusb_selfDiagnosis", zprusb_selfDiagnosis, diagnosis.kind, diagnosis.first, diagnosis.second);
    if (code != ZPRUSB_SUCCESS) throw Refusal("The diagnosis did not start: " + resultSentence(code), code);
}

Bytes results() {
    Bytes bytes(ZPRUSB_DIAGNOSIS_RESULTS_SIZE);
    auto length = static_cast<uint32_t>(bytes.size());
    call("zprusb_getSelfDiagnosisResults", zprusb_getSelfDiagnosisResults, bytes.data(), &length);
    if (length != bytes.size())
        throw Refusal("The printer sent " + counted(length, "byte", "bytes") + " of results instead of 40.");
    return bytes;
}

/// How it ended, as far as the results are laid out as this tool knows them: kind, two parameters, outcome.
enum class Outcome { unknown, passed, failed };
constexpr const char* words[] = {"unknown", "passed", "failed"};

Outcome outcomeIn(const Bytes& bytes, const DiagnoseArguments& diagnosis) {
    const bool isKnown = bytes[0] >= 1 && bytes[0] <= 7 && bytes[3] >= 1 && bytes[3] <= 2;
    const bool isAsked = diagnosis.resultsOnly || bytes[0] == diagnosis.kind;
    return isKnown && isAsked ? static_cast<Outcome>(bytes[3]) : Outcome::unknown;
}

}  // namespace

int run(const Arguments& common, const DiagnoseArguments& arguments) {
    if (!arguments.resultsOnly && arguments.kind == 0)
        throw WrongUsage("Name the kind of the diagnosis, or say --results-only.");
    const Printer printer(common.printer);
    if (!arguments.resultsOnly) start(arguments);
    const Bytes bytes = results();
    const Outcome outcome = outcomeIn(bytes, arguments);
    const std::string word = words[static_cast<int>(outcome)];
    View view = dumpOf(0, bytes);
    view.data["outcome"] = word;
    view.text += outcome == Outcome::unknown
                     ? "The results are not laid out as this tool knows them; they don't tell it the outcome.\n"
                     : "The diagnosis " + word + ".\n";
    show(view, common.json);
    return outcome == Outcome::passed ? exitSuccess : exitRefused;
}

int run(const Arguments& common, const DiagnoseDataArguments& arguments) {
    const PrinterToChange printer(common, "start the self-diagnosis " + std::to_string(arguments.kind));
    Bytes data(ZPRUSB_MAX_ANSWER_PAYLOAD_SIZE);
    call("zprusb_selfDiagnosisData", zprusb_selfDiagnosisData, arguments.kind, arguments.first,
         arguments.second, data.data());
    while (!data.empty() && data.back() == 0) data.pop_back();
    View view = dumpOf(0, data);
    view.text += "Zeros at the end of the data are left out, as their number is not told.\n";
    show(view, common.json);
    return exitSuccess;
}

}  // namespace tool
