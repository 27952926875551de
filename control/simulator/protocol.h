/// The bytes on the wire, as the printer reads and writes them. All numbers are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace simulator {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

/// Two identifier bytes, then the number of payload bytes.
constexpr size_t requestHeaderSize = 4;
constexpr size_t answerHeaderSize = 10;

/// Reads a number of `size` bytes; the bytes are there, as the request's length was checked.
uint32_t numberAt(ByteView bytes, size_t offset, size_t size);

void appendNumber(Bytes& bytes, uint32_t number, size_t size);

/// Appends exactly `size` bytes: the text, cut off or filled up with zeros.
void appendPadded(Bytes& bytes, std::string_view text, size_t size);

/// What a printer says about itself. Group and detail belong to a device error.
struct Status {
    uint8_t number = 0;
    uint8_t group = 0;
    uint8_t detail = 0;
};

/// Why a request is refused, as error number of the answer.
enum class Refusal : uint8_t {
    unknownCommand = 0x01,
    wrongLength = 0x02,
    outOfRange = 0x03,
    notPermitted = 0x04,
    noResults = 0x36,
};

struct Answer {
    static constexpr uint8_t normalKind = 1;
    static constexpr uint8_t errorKind = 2;

    uint8_t kind = normalKind;
    Status error;   // of an error answer
    Status status;  // of the printer, in every answer
    Bytes payload;

    Bytes encode() const;
};

Answer errorAnswer(Status error);
Answer refuse(Refusal reason);

}  // namespace simulator
