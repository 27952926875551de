#include <zprusb_text.h>

#include "api/internal.h"
#include "commands.h"
#include "dump.h"
#include "failure.h"
#include "printer.h"
#include "protocol/answer_codes.h"
#include "text.h"

namespace tool {
namespace {

using protocol::Answer;

/// What the header says; null when the bytes are no whole answer.
Json headerOf(const Answer& answer) {
    const bool error = answer.isError();
    if (!answer.isComplete() || (!error && answer.responseKind() != Answer::normalAnswer)) return nullptr;
    const uint16_t code =
        (error ? protocol::decodeErrorAnswer(answer) : protocol::decodeStatusNumber(answer)).code;
    return {
        {"kind", error ? "error" : "normal"}, {"code", code}, {"meaning", zprusb_resultWords(code).meaning}};
}

std::string wordsOf(const Json& header) {
    if (header.is_null()) return "This is not an answer of the usual form.\n";
    return "The header says: " + header["kind"].get<std::string>() + " answer, code " + header["code"].dump() +
           ": " + header["meaning"].get<std::string>() + "\n";
}

}  // namespace

int run(const Arguments& common, const UniversalArguments& arguments) {
    confirm(common, "send " + counted(arguments.bytes.size(), "byte", "bytes") + " by the universal command");
    const Printer printer(common.printer);
    Bytes answer(ZPRUSB_MAX_ANSWER_PAYLOAD_SIZE);
    uint8_t count = 0;
    uint16_t code = 0;
    require(zprusb_universalCommand(arguments.bytes.data(), static_cast<uint8_t>(arguments.bytes.size()),
                                    answer.data(), &count, &code),
            code);
    show(dumpOf(0, ByteView(answer).first(count)), common.json);
    return exitSuccess;
}

int run(const Arguments& common, const RawArguments& arguments) {
    confirm(common, "send " + counted(arguments.bytes.size(), "byte", "bytes") + " as they are");
    const Printer printer(common.printer);
    Answer answer;
    uint16_t code = 0;
    require(zprusb_transferRaw(arguments.bytes.data(), static_cast<uint32_t>(arguments.bytes.size()),
                               answer.bytes.data(), &answer.count, &code),
            code);
    const Json header = headerOf(answer);
    View view = dumpOf(0, ByteView(answer.bytes).first(answer.count));
    view.data["header"] = header;
    view.text += wordsOf(header);
    show(view, common.json);
    return exitSuccess;
}

}  // namespace tool
