/// The two exchanges that most operations are made of: one request, one answer. What either reports is that of
/// the last step that ran.
#pragma once

#include "device/printer_object.h"
#include "protocol/requests.h"
#include "protocol/responses.h"

namespace protocol {

/// Sends a command and receives its acknowledgement.
/// @param send its builder in protocol/requests.h, called with these values.
template <class... Parameters, class... Values>
bool perform(device::PrinterObject& printer, uint16_t* resultCode, bool (*send)(PipeWriter&, Parameters...),
             const Values&... values) {
    return send(printer.writer, values..., resultCode) && receiveAck(printer.reader, resultCode);
}

/// Sends a question and receives the data of its answer.
template <class... Parameters, class... Values>
bool query(device::PrinterObject& printer, Payload& payload, uint16_t* resultCode,
           bool (*send)(PipeWriter&, Parameters...), const Values&... values) {
    return send(printer.writer, values..., resultCode) && receivePayload(printer.reader, payload, resultCode);
}

}  // namespace protocol
