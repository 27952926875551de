/// Writers of a diagnostic trace in c:\bin, a folder that somebody has to make: without it nothing is written,
/// and nothing is ever reported. Where drives have no letters, as on Linux, it is the folder c:/bin below the
/// current directory. No operation calls them; they are for whoever looks for a fault.
///
/// Each appends one entry, which begins with the local time, and closes the file. All but
/// traceThreadDevice() write to a file for each thread of each process.
#pragma once

#include "device/transport.h"
#include "platform/local_time.h"

namespace trace {

using device::PipeReader;
using device::PipeWriter;

/// What every entry begins with.
inline platform::LocalTime traceTimestamp() {
    return platform::localTime();
}

/// The pipe handle that the device table has.
/// @param kind 1: of the read pipe; 2: of the write pipe.
void traceConnectHandle(int kind, int32_t deviceIndex);
inline void traceConnectHandle(int kind, uint8_t deviceIndex) {
    traceConnectHandle(kind, int32_t{deviceIndex});
}

/// An event. A new file begins with the identifiers of process and thread.
/// @param kind 0: the name alone; 1: with the result; 2: with value, as size, and result; 3: with value, as
///        data. Another kind: no entry.
void traceApiCall(int kind, const char* name, uint32_t value, uint16_t result);

/// The same, without kind 3, in one file for all threads and processes.
void traceThreadDevice(int kind, const char* name, uint32_t value, uint16_t result);

void traceReceive(const PipeReader& connection, const uint8_t* bytes, const uint32_t* length);

/// @param kind 1: with the connection's pipe handle.
void traceReceiveHandle(const PipeReader& connection, int kind);

/// A request, with the name of its command.
void traceSend(const PipeWriter& connection, const uint8_t* frame, const uint32_t* length);

/// @param kind 1: with the connection's pipe handle; 2: with the bytes.
void traceSendHandle(const PipeWriter& connection, int kind, const uint8_t* bytes, const uint32_t* length);

}  // namespace trace
