/// Self-diagnosis. None of these reserves the printer.
#pragma once

#include "device/printer_object.h"

namespace printer {

using device::PrinterObject;
using device::Result;

/// Starts a diagnosis; a kind or a parameter outside its range is refused with 1006.
Result selfDiagnosis(PrinterObject& printer, uint8_t kind, uint8_t first, uint8_t second);

/// Starts a diagnosis of any kind.
/// @param out receives the answer's payload, at most `ZPRUSB_MAX_ANSWER_PAYLOAD_SIZE` bytes.
Result selfDiagnosisData(PrinterObject& printer, uint8_t kind, uint8_t first, uint8_t second, uint8_t* out);

/// @param out null asks for the size: the code is 0 then, and the result false.
/// @param length the room in out, then the bytes copied: at most `ZPRUSB_DIAGNOSIS_RESULTS_SIZE`.
Result getSelfDiagnosisResults(PrinterObject& printer, uint8_t* out, uint32_t* length);

}  // namespace printer
