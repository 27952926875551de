/// The firmware update: a file becomes an image, the printer accepts the transfer, the image goes out in parts.
/// None of these takes the API lock or reserves the printer. Those with a printer object need one that was
/// opened for update; on another one they give 1501.
#pragma once

#include "device/printer_object.h"
#include "firmware/srecord_file.h"

namespace firmware {

using device::PrinterObject;
using device::Result;

/// Prepares the read of all that a file's records cover, as an update sends it. It scans the file first, so
/// that no memory is taken for what the file only pretends to hold.
/// @param job all but the path is set here.
/// @return as readSRecordFile(); 3003 also for more than 512 KiB. The range tells then where the records lie.
uint16_t prepareUpdateImage(const char* path, SRecordJob& job);

/// The read that was prepared.
/// @return as readSRecordFile(); 3003 also when the file has changed since.
uint16_t readUpdateImage(SRecordJob& job);

/// What loadUpdateImage() tells about an image; each pointer may be null.
struct ImageFacts {
    uint32_t* length;
    uint32_t* byteSum;
    uint32_t* startAddress;
    uint32_t* endAddress;
};

/// @param image receives the image, to be released with freeUpdateImage(); stays null on failure,
///        with a length and a sum of 0.
Result loadUpdateImage(PrinterObject& printer, const char* path, const ImageFacts& facts, uint8_t*& image);

/// @param image may be null.
void freeUpdateImage(uint8_t* image);

/// Whether the selected printer is one that takes firmware; otherwise 2000.
Result checkUpdateTarget(PrinterObject& printer);

/// Announces a transfer; the printer gets 300 ms to prepare for it. Whatever goes wrong is 3200.
Result startUpdate(PrinterObject& printer, uint8_t target, uint32_t start, uint32_t length);

/// Sends the bytes after those that were sent since the last start.
/// @param data the start of the image in every call.
/// @param sent 0; becomes the number of bytes sent. May not be null.
Result writeUpdateData(PrinterObject& printer, const uint8_t* data, uint32_t length, uint32_t* sent);

}  // namespace firmware
