#include "protocol/exchange.h"

#include <algorithm>

#include "protocol/answer_codes.h"
#include "protocol/requests.h"

namespace protocol {

namespace {

using device::failure;

Result receive(Connection& connection, Answer& answer) {
    answer = {};
    return device::workerRead(connection.reader, answer.bytes.data(), answer.count);
}

Result checkLength(const Answer& answer) {
    return answer.isComplete() ? device::done : failure(ZPRUSB_COMMUNICATION);
}

/// An error answer's own code, or the code of the length with the data handed out all the same.
Result decodeData(const Answer& answer) {
    return answer.isError() ? decodeErrorAnswer(answer) : Result{true, checkLength(answer).code};
}

Result decodeAck(const Answer& answer) {
    return answer.isError() ? decodeErrorAnswer(answer) : checkLength(answer);
}

Result decodeStatus(const Answer& answer) {
    if (answer.kind() != Answer::normalAnswer) return decodeAck(answer);
    const Result result = decodeStatusNumber(answer);
    if (!result) return result;
    const uint8_t* payload = answer.payload();
    const bool flagged = payload[statusPayload::firstFlag] != 0 && payload[statusPayload::secondFlag] != 0;
    return flagged ? failure(ZPRUSB_CONDITION_2100) : device::done;
}

/// Hands out the payload of a data answer, but never more than arrived behind the header.
Result takePayload(const Answer& answer, Payload& payload) {
    const Result result = decodeData(answer);
    if (!result) return result;
    const uint32_t arrived = answer.count - std::min(answer.count, Answer::headerLength);
    payload.count = std::min(answer.payloadLength(), arrived);
    std::copy_n(answer.payload(), payload.count, payload.bytes.begin());
    return result;
}

}  // namespace

Result exchange(Connection& connection, const Request& request, Answer& answer) {
    const Result sent = send(connection, request);
    return sent ? receive(connection, answer) : sent;
}

Result perform(Connection& connection, const Request& request) {
    Answer answer;
    const Result read = exchange(connection, request, answer);
    return read ? foldAnswerErrors(decodeAck(answer)) : read;
}

Result fetch(Connection& connection, const Request& request, Payload& payload) {
    payload = {};
    Answer answer;
    const Result read = exchange(connection, request, answer);
    return read ? takePayload(answer, payload) : read;
}

Result checkStatus(Connection& connection) {
    Answer answer;
    const Result read = exchange(connection, request::getStatus(), answer);
    return read ? foldAnswerErrors(decodeStatus(answer)) : read;
}

Result fetchStatus(Connection& connection, Answer& answer) {
    const Result read = exchange(connection, request::getStatus(), answer);
    return read ? decodeData(answer) : read;
}

Result fetchDirectly(Connection& connection, const Request& request, Payload& payload, uint8_t& announced) {
    payload = {};
    const Result sent = send(connection, request);
    if (!sent) return sent;
    Answer answer;
    const Result received = device::directRead(connection.reader, answer.bytes.data(), answer.count);
    if (!received) return received;
    if (answer.count == 0) return failure(ZPRUSB_COMMUNICATION);
    const Result result = takePayload(answer, payload);
    if (result) announced = static_cast<uint8_t>(answer.payloadLength());
    return result;
}

Result send(Connection& connection, const Request& request) {
    if (request.isEmpty()) return failure(ZPRUSB_BAD_ARGUMENT);
    return device::workerWrite(connection.writer, request.data(), request.length());
}

Result sendDirectly(Connection& connection, const Request& request) {
    if (request.isEmpty()) return failure(ZPRUSB_BAD_ARGUMENT);
    return device::directWrite(connection.writer, request.data(), request.length());
}

Result receiveStatus(Connection& connection, Answer& answer) {
    const Result received = receive(connection, answer);
    return received ? decodeData(answer) : received;
}

Result dropAnswer(Connection& connection) {
    Answer answer;
    return device::directRead(connection.reader, answer.bytes.data(), answer.count);
}

}  // namespace protocol
