#include <zprusb_text.h>

#include "api/internal.h"
#include "call.h"
#include "commands.h"
#include "dump.h"
#include "failure.h"
#include "printer_to_change.h"
#include "protocol/answer_codes.h"
#include "text.h"

namespace tool {
namespace {

using protocol::Answer;

/// What the header says; null when the bytes are no whole answer.
Json headerOf(const Answer& answer) {
    const bool error = answer.isError();
    if (!answer.isComplete() || (!error && answer.kind() != Answer::normalAnswer)) return nullptr;
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
    const auto length = static_cast<uint8_t>(arguments.bytes.size());
    const PrinterToChange printer(common,
                                  "send " + counted(length, "byte", "bytes") + " by the universal command");
    Bytes answer(ZPRUSB_MAX_ANSWER_PAYLOAD_SIZE);
    uint8_t count = 0;
    call("zprusb_universalCommand", zprusb_universalCommand, arguments.bytes.data(), length, answer.data(),
         &count);
    show(dumpOf(0, ByteView(answer).first(count)), common.json);
    return exitSuccess;
}

int run(const Arguments& common, const RawArguments& arguments) {
    const auto length = static_cast<uint32_t>(arguments.bytes.size());
    const PrinterToChange printer(common, "send " + counted(length, "byte", "bytes") + " as they are");
    if (arguments.noAnswer) {
        call("zprusb_writeRaw", zprusb_writeRaw, arguments.bytes.data(), &length);
        show({{{"printer", printer->number()}, {"sent", length}},
              "Sent " + counted(length, "byte", "bytes") + ".\n"},
             common.json);
        return exitSuccess;
    }
    Answer answer;
    call("zprusb_transferRaw", zprusb_transferRaw, arguments.bytes.data(), length, answer.bytes.data(),
         &answer.count);
    const Json header = headerOf(answer);
    View view = dumpOf(0, ByteView(answer.bytes).first(answer.count));
    view.data["header"] = header;
    view.text += wordsOf(header);
    show(view, common.json);
    return exitSuccess;
}

int run(const Arguments& common, const ReadRawArguments&) {
    const Printer printer(common.printer);
    Bytes bytes(ZPRUSB_MAINTENANCE_READ_SIZE);
    call("zprusb_readRaw", zprusb_readRaw, bytes.data());
    show(dumpOf(0, bytes), common.json);
    return exitSuccess;
}

}  // namespace tool
