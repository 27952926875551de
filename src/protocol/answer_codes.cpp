#include "protocol/answer_codes.h"

namespace protocol {

namespace {

/// A run of the printer's numbers, the code of the first one (the others follow in order), the answers in which
/// the run has a meaning, and whether a request can succeed with it.
struct NumberRow {
    uint8_t first;
    uint8_t last;
    uint16_t code;
    bool inErrorAnswer;
    bool inStatus;
    bool succeeds;
};

constexpr NumberRow numberTable[] = {
    {0x00, 0x00, ZPRUSB_SUCCESS, false, true, true},
    {0x01, 0x05, ZPRUSB_ANSWER_ERROR_1, true, false, false},
    {0x21, 0x21, ZPRUSB_CONDITION_2100, true, true, false},
    {0x31, 0x31, ZPRUSB_CONDITION_2101, true, true, false},
    {0x33, 0x39, ZPRUSB_CONDITION_2103, true, true, false},
    {0x61, 0x63, ZPRUSB_NOTICE_2200, true, true, true},
    {0x6A, 0x6D, ZPRUSB_NOTICE_2209, true, true, true},
};

/// Device errors: the groups and details from the first to the last, and their code.
struct DeviceErrorRow {
    uint8_t firstGroup;
    uint8_t lastGroup;
    uint8_t firstDetail;
    uint8_t lastDetail;
    uint16_t code;
};

constexpr DeviceErrorRow deviceErrorTable[] = {
    {1, 4, 0, 255, ZPRUSB_DEVICE_ERROR_2500}, {5, 5, 0, 255, ZPRUSB_DEVICE_ERROR_2307},
    {6, 6, 1, 1, ZPRUSB_DEVICE_ERROR_2309},   {6, 6, 2, 4, ZPRUSB_DEVICE_ERROR_2306},
    {6, 6, 5, 9, ZPRUSB_DEVICE_ERROR_2305},   {6, 6, 11, 11, ZPRUSB_DEVICE_ERROR_2309},
    {6, 6, 16, 16, ZPRUSB_DEVICE_ERROR_2310},
};

bool isWithin(uint8_t value, uint8_t first, uint8_t last) {
    return first <= value && value <= last;
}

bool isCommunicationFailure(uint16_t code) {
    return ZPRUSB_COMMUNICATION <= code && code <= ZPRUSB_ANSWER_ERROR_5;
}

/// By the group and detail of a device error.
Result decodeDeviceError(const Answer& answer) {
    for (const DeviceErrorRow& row : deviceErrorTable) {
        if (isWithin(answer.errorGroup(), row.firstGroup, row.lastGroup) &&
            isWithin(answer.errorDetail(), row.firstDetail, row.lastDetail)) {
            return device::failure(row.code);
        }
    }
    return device::failure(ZPRUSB_UNEXPECTED);
}

/// @param meaning where the number was found.
Result decode(const Answer& answer, uint8_t number, bool NumberRow::*meaning) {
    if (number == deviceErrorNumber) return decodeDeviceError(answer);
    for (const NumberRow& row : numberTable) {
        if (isWithin(number, row.first, row.last) && row.*meaning) {
            return {row.succeeds, static_cast<uint16_t>(row.code + (number - row.first))};
        }
    }
    return device::failure(ZPRUSB_UNEXPECTED);
}

}  // namespace

Result decodeErrorAnswer(const Answer& answer) {
    return {false, decode(answer, answer.errorCode(), &NumberRow::inErrorAnswer).code};
}

Result decodeStatusNumber(const Answer& answer) {
    return decode(answer, answer.statusCode(), &NumberRow::inStatus);
}

Result foldAnswerErrors(Result result) {
    if (isCommunicationFailure(result.code)) result.code = ZPRUSB_COMMUNICATION;
    return result;
}

bool isUnreachable(uint16_t code) {
    return code == ZPRUSB_NO_PRINTER || isCommunicationFailure(code);
}

}  // namespace protocol
