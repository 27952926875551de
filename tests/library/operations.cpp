#include "operations.h"

#include "api/internal.h"

namespace {

const Bytes bytes = countingBytes(1536, 0x31);
const uint8_t* const data = bytes.data();
const uint8_t two = 2;
const uint32_t five = 5, nine = 9;
uint8_t out[512];
uint8_t outCount;
uint32_t outLength = 40;

const Bytes status{1, 0, 0, 0};
const Bytes mediaInfo{2, 0, 0, 0};
const Bytes permission{2, 0x80, 2, 0, 0xA4, 4};
const Bytes uniqueString{7, 0xC0, 6, 0, 5, 0x31, 0x32, 0x33, 0x34, 0x35};
const Bytes modelName{3, 0, 0x5A, 0x50, 0x52, 0x46, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
const Bytes sixValues{8, 0xC0, 26, 0, 2, 1, 3, 0, 4, 0, 5, 0, 6, 0, 8,
                      7, 0,    0,  0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
const Bytes page{1, 0x40, 14, 0, 0x05, 0x03, 0x02, 0x05, 0x04, 0x07, 0x06, 8, 9, 11, 200, 0, 200, 0};

}  // namespace

const std::vector<Operation> operations{
    {CALL(zprusb_status(code)), true, {status}, 2600, 4},
    {CALL(zprusb_checkMediaInfo(0xF1, 15240, 10160, code)), true, {mediaInfo}, 2601, 4},
    {CALL(zprusb_write(data, &nine, code)), false, {countingBytes(9, 0x31)}},
    {CALL(zprusb_setPrinterInfo(20, data, nullptr, code)), true},
    {CALL(zprusb_setPrinterInfo(23, &two, nullptr, code)), true, {{6, 0x40, 1, 0, 2}}, 2600, 4},
    {CALL(zprusb_setPrinterInfo(24, data, nullptr, code)),
     true,
     {{8, 0x40, 5, 0, 1, 0x31, 0x32, 0x33, 0x34}},
     2600,
     4},
    {CALL(zprusb_setPrinterInfo(25, data, &five, code)), true, {uniqueString}, 2600, 4},
    {CALL(zprusb_setPrinterInfo(26, data, &five, code)), true, {uniqueString}, 2600, 4},
    {CALL(zprusb_resetCounter(2, code)), true, {permission, {6, 0xC0, 6, 0, 0xA4, 4, 0, 0, 0, 0}}, 2600, 4},
    {CALL(zprusb_blinkLED(code)), true, {status, {3, 0x40, 0, 0}}, 2600},
    {CALL(zprusb_resetPrinter(code)), true, {status, {4, 0x40, 1, 0, 3}}, 2600},
    {CALL(zprusb_setToneCurve(0, nullptr, code)), true, {{4, 0x40, 1, 0, 4}}, 2600},
    {CALL(zprusb_setToneCurve(2, data, code)), true, {{4, 0xC0, 9, 0, 4, 0, 0, 0, 0, 0, 6, 0, 0}, bytes}, 2600},
    {CALL(zprusb_resetErrorLog(code)), false, {{7, 0x40, 0, 0}}, 2600},
    {CALL(zprusb_setEepromMaintenance(0xA4, data, 4, code)),
     false,
     {permission, {6, 0xC0, 6, 0, 0xA4, 4, 0x31, 0x32, 0x33, 0x34}},
     2600},
    {CALL(zprusb_getEepromMaintenance(0x60, out, 4, code)), false, {{5, 0xC0, 2, 0, 0x60, 4}}, 2601},
    {CALL(zprusb_universalCommand(data, 2, out, &outCount, code)),
     false,
     {{0xFF, 0xC0, 2, 0, 0x31, 0x32}},
     2601},
    {CALL(zprusb_getModelName(code)), true, {modelName}},
    {CALL(zprusb_writeRaw(data, &nine, code)), false, {countingBytes(9, 0x31)}},
    {CALL(zprusb_transferRaw(status.data(), 4, out, &outLength, code)), false, {status}},
    {CALL(zprusb_selfDiagnosis(3, 2, 5, code)), false, {{1, 0xC0, 3, 0, 3, 2, 5}}, 2600},
    {CALL(zprusb_selfDiagnosisData(9, 8, 7, out, code)), false, {{1, 0xC0, 3, 0, 9, 8, 7}}, 2601},
    {CALL(zprusb_getSelfDiagnosisResults(out, &outLength, code)), false, {{2, 0xC0, 0, 0}}, 2601},
    {CALL(zprusb_setMaintenanceParams(0x0102, 3, 4, 5, 6, 0x0708, code)), false, {sixValues}, 2600},
    {CALL(zprusb_getMaintenanceData(5, 6, out, code)), false, {{9, 0xC0, 2, 0, 5, 6}}, 2601},
    {CALL(zprusb_cmdFlashLed(code)), true, {{3, 0x40, 0, 0}}},
    {CALL(zprusb_cmdReset(9, code)), true, {{4, 0x40, 1, 0, 9}}},
    {CALL(zprusb_cmdGetStatus(code)), true, {status}},
    {CALL(zprusb_cmdGetMediaInfo(code)), true, {mediaInfo}},
    {CALL(zprusb_cmdSelfDiagnosis(9, 8, 7, code)), false, {{1, 0xC0, 3, 0, 9, 8, 7}}},
    {CALL(zprusb_cmdGetSelfDiagnosisResults(code)), true, {{2, 0xC0, 0, 0}}},
    {CALL(zprusb_cmdGetFirmwareInfo(8, code)), true, {{3, 0xC0, 1, 0, 8}}},
    {CALL(zprusb_cmdGetEepromMaintenance(0x60, 4, code)), true, {{5, 0xC0, 2, 0, 0x60, 4}}},
    {CALL(zprusb_cmdSetEepromMaintenance(0xA4, 1, data, code)), true, {{6, 0xC0, 3, 0, 0xA4, 1, 0x31}}},
    {CALL(zprusb_cmdPrint(0x0105, 0x0203, 0x0405, 0x0607, 8, 9, 11, code)), true, {page}},
    {CALL(zprusb_cmdUpdate(3, 0x0A0B0C0D, 1536, code)),
     true,
     {{4, 0xC0, 9, 0, 3, 0x0D, 0x0C, 0x0B, 0x0A, 0, 6, 0, 0}}},
    {CALL(zprusb_cmdGetPrinterUniqueString(code)), true, {{3, 0x80, 0, 0}}},
    {CALL(zprusb_cmdSetPrinterUniqueString(data, 5, code)), true, {uniqueString}},
};
