#include "protocol/responses.h"

#include <algorithm>

#include "protocol/response_parser.h"

namespace protocol {

namespace {

/// What is known of an answer so far; the decoding that comes later replaces it.
struct Outcome {
    bool success;
    uint16_t code;

    bool report(uint16_t* resultCode) const {
        device::setResult(resultCode, code);
        return success;
    }
};

bool isErrorAnswer(const Answer& answer) {
    return answer.responseKind() == Answer::errorAnswer;
}

Outcome checkLength(const Answer& answer) {
    return answer.isComplete() ? Outcome{true, ZPRUSB_SUCCESS} : Outcome{false, ZPRUSB_COMMUNICATION};
}

Outcome parse(ParseMode mode, const Answer& answer) {
    Outcome outcome{};
    outcome.success = parseResponse(mode, answer, &outcome.code);
    return outcome;
}

Outcome parseStatus(const Answer& answer) {
    const Outcome outcome = parse(ParseMode::Status, answer);
    if (!outcome.success) return outcome;
    const uint8_t* payload = answer.payload();
    const bool flagged = payload[statusPayload::firstFlag] != 0 && payload[statusPayload::secondFlag] != 0;
    return flagged ? Outcome{false, ZPRUSB_CONDITION_2100} : Outcome{true, ZPRUSB_SUCCESS};
}

bool readAnswer(PipeReader& reader, Answer& answer, uint16_t* resultCode) {
    return device::workerRead(reader, answer.bytes.data(), answer.count, resultCode);
}

/// An error answer's own code, or the outcome of the length with the data handed out all the same.
Outcome parseData(const Answer& answer) {
    if (isErrorAnswer(answer)) return parse(ParseMode::ErrorAnswer, answer);
    return {true, checkLength(answer).code};
}

/// Hands out the payload, but never more than arrived behind the header.
bool takePayload(const Answer& answer, Payload& payload, uint16_t* resultCode) {
    const Outcome outcome = parseData(answer);
    if (outcome.success) {
        const uint32_t arrived = answer.count - std::min(answer.count, Answer::headerLength);
        payload.count = std::min(answer.payloadLength(), arrived);
        std::copy_n(answer.payload(), payload.count, payload.bytes.begin());
    }
    return outcome.report(resultCode);
}

}  // namespace

bool receiveStatus(PipeReader& reader, uint16_t* resultCode) {
    Answer answer;
    if (!readAnswer(reader, answer, resultCode)) return false;
    Outcome outcome = checkLength(answer);
    if (isErrorAnswer(answer)) outcome = parse(ParseMode::ErrorAnswer, answer);
    if (answer.responseKind() == Answer::normalAnswer) outcome = parseStatus(answer);
    outcome.code = foldAnswerErrors(outcome.code);
    return outcome.report(resultCode);
}

bool receiveAck(PipeReader& reader, uint16_t* resultCode) {
    Answer answer;
    if (!readAnswer(reader, answer, resultCode)) return false;
    Outcome outcome = checkLength(answer);
    if (isErrorAnswer(answer)) outcome = parse(ParseMode::ErrorAnswer, answer);
    outcome.code = foldAnswerErrors(outcome.code);
    return outcome.report(resultCode);
}

bool receiveWholeAnswer(PipeReader& reader, Answer& answer, uint16_t* resultCode) {
    answer = {};
    if (!readAnswer(reader, answer, resultCode)) return false;
    return parseData(answer).report(resultCode);
}

bool receivePayload(PipeReader& reader, Payload& payload, uint16_t* resultCode) {
    Answer answer;
    payload = {};
    if (!readAnswer(reader, answer, resultCode)) return false;
    return takePayload(answer, payload, resultCode);
}

bool receiveCountedPayload(PipeReader& reader, Payload& payload, uint8_t& count, uint16_t* resultCode) {
    Answer answer;
    payload = {};
    if (!device::directRead(reader, answer.bytes.data(), answer.count, resultCode)) return false;
    if (answer.count == 0) return Outcome{false, ZPRUSB_COMMUNICATION}.report(resultCode);
    if (!takePayload(answer, payload, resultCode)) return false;
    count = static_cast<uint8_t>(answer.payloadLength());
    return true;
}

bool dropAnswer(PipeReader& reader, uint16_t* resultCode) {
    Answer answer;
    return device::directRead(reader, answer.bytes.data(), answer.count, resultCode);
}

}  // namespace protocol
