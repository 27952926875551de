#include "protocol.h"

#include <algorithm>

namespace simulator {

uint32_t numberAt(ByteView bytes, size_t offset, size_t size) {
    uint32_t number = 0;
    for (size_t i = size; i-- > 0;) number = number << 8 | bytes[offset + i];
    return number;
}

void appendNumber(Bytes& bytes, uint32_t number, size_t size) {
    for (size_t i = 0; i < size; ++i) bytes.push_back(static_cast<uint8_t>(number >> 8 * i));
}

void appendPadded(Bytes& bytes, std::string_view text, size_t size) {
    const size_t end = bytes.size() + size;
    bytes.insert(bytes.end(), text.begin(), text.begin() + static_cast<ptrdiff_t>(std::min(text.size(), size)));
    bytes.resize(end, 0);
}

Bytes Answer::encode() const {
    // An error answer and a status share the bytes for group and detail; the error is what the host asked for.
    const Status& cause = kind == errorKind ? error : status;
    Bytes bytes{kind, error.number, cause.group, cause.detail, 0, 0, 0, status.number};
    appendNumber(bytes, static_cast<uint32_t>(payload.size()), 2);
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}

Answer errorAnswer(Status error) {
    Answer answer;
    answer.kind = Answer::errorKind;
    answer.error = error;
    return answer;
}

Answer refuse(Refusal reason) {
    return errorAnswer({static_cast<uint8_t>(reason)});
}

}  // namespace simulator
