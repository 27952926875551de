#include "printer/diagnosis.h"

#include <algorithm>

#include "protocol/exchange.h"
#include "protocol/requests.h"
#include "protocol/service_sizes.h"

namespace printer {

namespace {

using device::failure;
namespace request = protocol::request;

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

Result selfDiagnosis(PrinterObject& printer, uint8_t kind, uint8_t first, uint8_t second) {
    if (!isPossible(kind, first, second)) return failure(ZPRUSB_BAD_ARGUMENT);
    if (kind == kindWithoutParameters) first = second = 0;
    return protocol::perform(printer.connection, request::selfDiagnosis(kind, first, second));
}

Result selfDiagnosisData(PrinterObject& printer, uint8_t kind, uint8_t first, uint8_t second, uint8_t* out) {
    if (out == nullptr) return failure(ZPRUSB_BAD_ARGUMENT);
    protocol::Payload payload;
    const Result result =
        protocol::fetch(printer.connection, request::selfDiagnosis(kind, first, second), payload);
    if (result) std::copy_n(payload.bytes.begin(), payload.count, out);
    return result;
}

Result getSelfDiagnosisResults(PrinterObject& printer, uint8_t* out, uint32_t* length) {
    if (length == nullptr) return failure(ZPRUSB_BAD_ARGUMENT);
    if (out == nullptr) {
        *length = ZPRUSB_DIAGNOSIS_RESULTS_SIZE;
        return failure(ZPRUSB_SUCCESS);
    }
    protocol::Payload results;  // zero after condition 2106
    const Result result = protocol::fetch(printer.connection, request::getSelfDiagnosisResults(), results);
    if (!result && result.code != ZPRUSB_CONDITION_2106) return result;
    *length = std::min(*length, uint32_t{ZPRUSB_DIAGNOSIS_RESULTS_SIZE});
    std::copy_n(results.bytes.begin(), *length, out);
    return result ? device::done : failure(ZPRUSB_DIAGNOSIS_WITH_2106);
}

}  // namespace printer
