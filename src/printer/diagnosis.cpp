#include "printer/diagnosis.h"

#include <algorithm>

#include "protocol/exchange.h"
#include "protocol/service_sizes.h"

namespace printer {

namespace {

struct Range {
    uint8_t first;
    uint8_t last;

    bool contains(uint8_t value) const { return first <= value && value <= last; }
};

constexpr Range any{0, 255};

struct DiagnosisKind {
    uint8_t kind;
    Range firstParameter;
    Range secondParameter;
};

constexpr uint8_t kindWithoutParameters = 1;
constexpr DiagnosisKind diagnosisKinds[] = {
    {1, any, any},       {2, {1, 7}, any}, {3, {1, 2}, {1, 5}}, {4, {1, 3}, {1, 3}},
    {5, {1, 3}, {1, 2}}, {6, {1, 7}, any}, {7, {1, 13}, any},
};

bool isPossible(uint8_t kind, uint8_t first, uint8_t second) {
    return std::any_of(std::begin(diagnosisKinds), std::end(diagnosisKinds), [&](const DiagnosisKind& row) {
        return row.kind == kind && row.firstParameter.contains(first) && row.secondParameter.contains(second);
    });
}

}  // namespace

bool selfDiagnosis(PrinterObject& printer, uint8_t kind, uint8_t first, uint8_t second, uint16_t* resultCode) {
    if (!isPossible(kind, first, second)) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    if (kind == kindWithoutParameters) first = second = 0;
    return protocol::perform(printer, resultCode, protocol::sendSelfDiagnosis, kind, first, second);
}

bool selfDiagnosisData(PrinterObject& printer, uint8_t kind, uint8_t first, uint8_t second, uint8_t* out,
                       uint16_t* resultCode) {
    if (out == nullptr) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    protocol::Payload payload;
    if (!protocol::query(printer, payload, resultCode, protocol::sendSelfDiagnosis, kind, first, second))
        return false;
    std::copy_n(payload.bytes.begin(), payload.count, out);
    return true;
}

bool getSelfDiagnosisResults(PrinterObject& printer, uint8_t* out, uint32_t* length, uint16_t* resultCode) {
    if (length == nullptr) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    if (out == nullptr) {
        *length = ZPRUSB_DIAGNOSIS_RESULTS_SIZE;
        device::setResult(resultCode, ZPRUSB_SUCCESS);
        return false;
    }
    uint16_t code = ZPRUSB_SUCCESS;
    protocol::Payload results;  // zero after condition 2106
    const bool received = protocol::query(printer, results, &code, protocol::sendGetSelfDiagnosisResults);
    if (!received && code != ZPRUSB_CONDITION_2106) return device::fail(code, resultCode);
    *length = std::min(*length, uint32_t{ZPRUSB_DIAGNOSIS_RESULTS_SIZE});
    std::copy_n(results.bytes.begin(), *length, out);
    device::setResult(resultCode, received ? ZPRUSB_SUCCESS : ZPRUSB_DIAGNOSIS_WITH_2106);
    return received;
}

}  // namespace printer
