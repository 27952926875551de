/// Entry points of the library that are not exported: a program that is linked with the static archive can
/// call them. They keep the conventions of zprusb.h: 1 for success and 0 for failure, the code through
/// resultCode (may be null), 1501 without an object. A null pointer where bytes are to be read or written gives
/// 1006 and sends nothing.
///
/// From zprusb_resetErrorLog() on they run without the API lock; what they send and what they receive with a
/// time-out holds it for the length of the transfer. "Reserves" means: holds the printer's device mutex for the
/// whole run, and fails with 2000 (no printer selected, or it is gone), 1500 (another thread or process holds
/// it for more than 500 ms, or its last owner ended without releasing it) or 2504. Entry points that don't
/// reserve must not run while another thread prints on the printer.
///
/// "The codes of error answers" are 2100 to 2310, 2500 and 2504; where the answer carries data, 2601 to 2605 as
/// well, which otherwise count as 2600. Data of an answer that is not as long as it says are handed out, and 1
/// is returned, with 2600.

#pragma once

#include <zprusb.h>

#include "protocol/service_sizes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Opens the library as zprusb_open() does, and its objects for firmware updates.
/// @param unused has no effect.
/// @param resultCode as for zprusb_open().
uint32_t zprusb_openForUpdate(uint32_t unused, uint16_t* resultCode);

/// Searches the printers and lists their identifiers.
/// @param ids 1024 bytes: 8 for each printer found, in the order found; the rest is filled with 0xFF.
/// @return the number of printers found; 0 also when there are 128.
uint32_t zprusb_listupPrinterId(uint8_t* ids);

/// Selects the printer with the given identifier.
/// @param printerId its 8 bytes in memory order; eight 0xFF bytes ask for the present selection.
/// @param resultCode 0; 1008; 1501.
/// @return the object's selected identifier (8 bytes, owned by the library, valid until the objects are
///         released); null when there is no object.
uint8_t* zprusb_selectPrinterId(uint64_t printerId, uint16_t* resultCode);

/// Writes a tone curve into the printer, or makes the printer forget it. Holds the API lock; reserves.
/// @param mode 0 forgets; 1 and 2 write one of two curves.
/// @param data ZPRUSB_TONE_CURVE_SIZE bytes, read for modes 1 and 2 only.
/// @param resultCode 0; 1006 another mode, or no data; 2600 every failure of an exchange.
uint32_t zprusb_setToneCurve(uint8_t mode, const uint8_t* data, uint16_t* resultCode);

/// Empties the printer's error log.
/// @param resultCode 0; 2600; the codes of error answers.
uint32_t zprusb_resetErrorLog(uint16_t* resultCode);

/// Asks for the permission and writes maintenance memory. A refused permission does not stop the write, which
/// the printer then refuses itself.
/// @param data count bytes.
/// @param resultCode 0; 2600; the codes of error answers.
uint32_t zprusb_setEepromMaintenance(uint8_t address, const uint8_t* data, uint8_t count, uint16_t* resultCode);

/// Reads maintenance memory.
/// @param out ZPRUSB_MAINTENANCE_READ_SIZE bytes: the memory's bytes, then zeros. Untouched after a failure.
/// @param count bytes to read.
/// @param resultCode 0; 2600; the codes of error answers.
uint32_t zprusb_getEepromMaintenance(uint8_t address, uint8_t* out, uint8_t count, uint16_t* resultCode);

/// Sends the universal command and waits for its answer, without a time-out.
/// @param data count bytes, 1 to ZPRUSB_MAX_UNIVERSAL_SIZE.
/// @param out the answer's payload, up to ZPRUSB_MAX_ANSWER_PAYLOAD_SIZE bytes.
/// @param outCount the low 8 bits of the payload's length.
/// @param resultCode 0; 1006 a count outside its range; 2600; the codes of error answers.
uint32_t zprusb_universalCommand(const uint8_t* data, uint8_t count, uint8_t* out, uint8_t* outCount,
                                 uint16_t* resultCode);

/// Asks for the model name and drops the answer: tells whether the printer answers at all. Reserves.
/// @param resultCode 0; 2600.
uint32_t zprusb_getModelName(uint16_t* resultCode);

/// Writes bytes to the printer as they are, without a time-out.
/// @param data *length bytes; of none, nothing is sent, 0 is returned and no code is written.
/// @param resultCode 0; 2600.
uint32_t zprusb_writeRaw(const uint8_t* data, const uint32_t* length, uint16_t* resultCode);

/// Writes bytes to the printer as they are and reads what it answers, both without a time-out.
/// @param data length bytes.
/// @param out the bytes read, up to ZPRUSB_MAX_ANSWER_SIZE.
/// @param outCount their number.
/// @param resultCode 0; 2600.
uint32_t zprusb_transferRaw(const uint8_t* data, uint32_t length, uint8_t* out, uint32_t* outCount,
                            uint16_t* resultCode);

/// Reads length-prefixed pieces, without a time-out, until one ends with a zero byte. Reserves.
/// @param out the pieces' bytes, up to ZPRUSB_MAINTENANCE_READ_SIZE.
/// @param resultCode 0; 2600 after a failed read, a piece that is not as long as it says, or more bytes than
///        there is room for. In the last two cases the bytes are there all the same, and 1 is returned.
uint32_t zprusb_readRaw(uint8_t* out, uint16_t* resultCode);

/// Starts a self-diagnosis.
/// @param kind 1 to 7.
/// @param p1 1 to 7 for kinds 2 and 6, 1 to 2 for kind 3, 1 to 3 for kinds 4 and 5, 1 to 13 for kind 7.
/// @param p2 1 to 5 for kind 3, 1 to 3 for kind 4, 1 to 2 for kind 5.
/// @param resultCode 0; 1006 a value outside its range; 2600; the codes of error answers.
uint32_t zprusb_selfDiagnosis(uint8_t kind, uint8_t p1, uint8_t p2, uint16_t* resultCode);

/// Starts a self-diagnosis with any parameters and receives its data.
/// @param out the answer's payload, up to ZPRUSB_MAX_ANSWER_PAYLOAD_SIZE bytes.
/// @param resultCode 0; 2600; the codes of error answers.
uint32_t zprusb_selfDiagnosisData(uint8_t kind, uint8_t p1, uint8_t p2, uint8_t* out, uint16_t* resultCode);

/// Receives the results of the last self-diagnosis.
/// @param out *length bytes; null asks for the size: *length becomes ZPRUSB_DIAGNOSIS_RESULTS_SIZE, the code 0
///        and the return value 0.
/// @param length the room in out; becomes the number of bytes copied, ZPRUSB_DIAGNOSIS_RESULTS_SIZE at most.
/// @param resultCode 0, also when the answer is not as long as it says; 8000 the printer answered with
///        condition 2106 (out then holds zeros); 2600; the codes of error answers.
uint32_t zprusb_getSelfDiagnosisResults(uint8_t* out, uint32_t* length, uint16_t* resultCode);

/// Sets the six maintenance values.
/// @param resultCode 0; 2600; the codes of error answers.
uint32_t zprusb_setMaintenanceParams(uint16_t v1, uint16_t v2, uint16_t v3, uint16_t v4, uint16_t v5,
                                     uint16_t v6, uint16_t* resultCode);

/// Receives maintenance data.
/// @param a, b which; their meaning is the printer's.
/// @param out ZPRUSB_MAINTENANCE_DATA_SIZE bytes: the answer's payload, then zeros. Untouched after a failure.
/// @param resultCode 0; 2600; the codes of error answers.
uint32_t zprusb_getMaintenanceData(uint8_t a, uint8_t b, uint8_t* out, uint16_t* resultCode);

/// Each of these sends one command and waits, without a time-out, for one answer, which is dropped: 1 means
/// that the read succeeded, whatever it read. They reserve, but for zprusb_cmdSelfDiagnosis(). A unique string
/// has 1 to 23 bytes, memory data 0 to 255, and of a job number the low byte is sent. zprusb_cmdPrint() sends
/// without a time-out as well.
/// Codes: 0; 1006 a count outside its range; 2600.
uint32_t zprusb_cmdFlashLed(uint16_t* resultCode);
uint32_t zprusb_cmdReset(uint8_t kind, uint16_t* resultCode);
uint32_t zprusb_cmdGetStatus(uint16_t* resultCode);
uint32_t zprusb_cmdGetMediaInfo(uint16_t* resultCode);
uint32_t zprusb_cmdSelfDiagnosis(uint8_t kind, uint8_t p1, uint8_t p2, uint16_t* resultCode);
uint32_t zprusb_cmdGetSelfDiagnosisResults(uint16_t* resultCode);
uint32_t zprusb_cmdGetFirmwareInfo(uint8_t component, uint16_t* resultCode);
uint32_t zprusb_cmdGetEepromMaintenance(uint8_t address, uint8_t count, uint16_t* resultCode);
uint32_t zprusb_cmdSetEepromMaintenance(uint8_t address, uint8_t count, const uint8_t* data,
                                        uint16_t* resultCode);
uint32_t zprusb_cmdPrint(uint16_t jobNumber, uint16_t copies, uint16_t width, uint16_t length,
                         uint8_t mediaCode, uint8_t option, uint8_t byte9, uint16_t* resultCode);
uint32_t zprusb_cmdUpdate(uint8_t target, uint32_t start, uint32_t length, uint16_t* resultCode);
uint32_t zprusb_cmdGetPrinterUniqueString(uint16_t* resultCode);
uint32_t zprusb_cmdSetPrinterUniqueString(const uint8_t* data, uint8_t count, uint16_t* resultCode);

/// Sends nothing and returns 0; writes no code but 1501.
uint32_t zprusb_cmdReserved(uint8_t value, uint16_t* resultCode);

/// The firmware update. The thread's object must have been opened with zprusb_openForUpdate(), otherwise 1501.
/// Order of use: check the target, load, start, write once or in parts, free. Not on two threads at once with
/// the same object.

/// Reads a file of Motorola S-records into an image of the addresses from its lowest to its highest data byte;
/// what no record sets is 0xFF.
/// @param path 8-bit characters, terminated.
/// @param imageLength, imageByteSum length of the image in bytes, and the sum of its bytes modulo 2^32; 0 after
///        a failure but 1501. May be null.
/// @param startAddress, endAddress of the image's first and last byte; untouched after a failure. May be null.
/// @param resultCode 0; 1000; 1005 the file can't be read, or ends within a record; 1006 no path; 1501; 3001;
///        3002; 3003 also when the image were larger than 512 KiB, no record has data, or the file has changed
///        while it was read.
/// @return the image, to be given to zprusb_freeUpdateImage() before zprusb_close(); null on failure.
uint8_t* zprusb_loadUpdateImage(const char* path, uint32_t* imageLength, uint32_t* imageByteSum,
                                uint32_t* startAddress, uint32_t* endAddress, uint16_t* resultCode);

/// Releases an image. Does nothing when there is no object.
/// @param image from zprusb_loadUpdateImage(), or null.
void zprusb_freeUpdateImage(uint8_t* image);

/// Tells whether a printer is selected that takes firmware. Sends nothing.
/// @param resultCode 0; 1501; 2000.
uint32_t zprusb_checkUpdateTarget(uint16_t* resultCode);

/// Announces a transfer to the printer, and waits 300 ms more once it has accepted.
/// @param target, start, length sent as they are; their meaning is the printer's.
/// @param resultCode 0; 1501; 2000; 3200.
uint32_t zprusb_startUpdate(uint8_t target, uint32_t start, uint32_t length, uint16_t* resultCode);

/// Sends the next bytes of the transfer, in chunks of 4096 bytes, without a time-out.
/// @param data the start of the image in every call: what was sent since the start is left out.
/// @param length bytes to send; becomes the number of bytes that this call sent, also when it fails. With 0,
///        nothing is sent.
/// @param resultCode 0; 1006; 1501; 2000; 2600, also when the bytes since the start would make 4 GiB or more:
///        then nothing is sent.
uint32_t zprusb_writeUpdateData(const uint8_t* data, uint32_t* length, uint16_t* resultCode);

#ifdef __cplusplus
}
#endif
