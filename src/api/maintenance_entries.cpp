/// Entry points for service: each is its frame and its operation.
#include "api/entry_frame.h"
#include "api/internal.h"
#include "printer/actions.h"
#include "printer/diagnosis.h"
#include "printer/maintenance.h"
#include "printer/page.h"
#include "printer/raw.h"

using api::call;
using api::lockedFrame;
using api::lockFreeFrame;

uint32_t zprusb_setToneCurve(uint8_t mode, const uint8_t* data, uint16_t* resultCode) {
    return call(lockedFrame, resultCode, printer::setToneCurve, mode, data);
}

uint32_t zprusb_resetErrorLog(uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::resetErrorLog);
}

uint32_t zprusb_setEepromMaintenance(uint8_t address, const uint8_t* data, uint8_t count,
                                     uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::setEepromMaintenance, address, data, count);
}

uint32_t zprusb_getEepromMaintenance(uint8_t address, uint8_t* out, uint8_t count, uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::getEepromMaintenance, address, out, count);
}

uint32_t zprusb_universalCommand(const uint8_t* data, uint8_t count, uint8_t* out, uint8_t* outCount,
                                 uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::universalCommand, data, count, out, outCount);
}

uint32_t zprusb_getModelName(uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::getModelName);
}

uint32_t zprusb_writeRaw(const uint8_t* data, const uint32_t* length, uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::writeData, data, length);
}

uint32_t zprusb_transferRaw(const uint8_t* data, uint32_t length, uint8_t* out, uint32_t* outCount,
                            uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::transferRaw, data, length, out, outCount);
}

uint32_t zprusb_readRaw(uint8_t* out, uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::readRaw, out);
}

uint32_t zprusb_selfDiagnosis(uint8_t kind, uint8_t p1, uint8_t p2, uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::selfDiagnosis, kind, p1, p2);
}

uint32_t zprusb_selfDiagnosisData(uint8_t kind, uint8_t p1, uint8_t p2, uint8_t* out, uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::selfDiagnosisData, kind, p1, p2, out);
}

uint32_t zprusb_getSelfDiagnosisResults(uint8_t* out, uint32_t* length, uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::getSelfDiagnosisResults, out, length);
}

uint32_t zprusb_setMaintenanceParams(uint16_t v1, uint16_t v2, uint16_t v3, uint16_t v4, uint16_t v5,
                                     uint16_t v6, uint16_t* resultCode) {
    const uint16_t values[] = {v1, v2, v3, v4, v5, v6};
    return call(lockFreeFrame, resultCode, printer::setMaintenanceParams, values);
}

uint32_t zprusb_getMaintenanceData(uint8_t a, uint8_t b, uint8_t* out, uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::getMaintenanceData, a, b, out);
}
