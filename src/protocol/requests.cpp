#include "protocol/requests.h"

#include "protocol/command_frame.h"
#include "protocol/service_sizes.h"

namespace protocol {

namespace {

/// The explicit print form has no arguments for the last two options of the page; it sends their values after
/// opening.
constexpr uint16_t explicitOption = 200;

uint8_t jobNumber(uint16_t pageId) {
    return static_cast<uint8_t>(pageId);
}

/// What both page commands end with.
void appendMediaAndOptions(CommandFrame& frame, const PageParameters& page) {
    frame.byte(page.mediaCode);
    frame.byte(page.printOption20);
    frame.byte(0);
    frame.word(page.printOption21);
    frame.word(page.printOption22);
}

}  // namespace

bool sendPrint(PipeWriter& writer, const PageParameters& page, uint16_t* resultCode) {
    CommandFrame frame(command::print);
    frame.byte(jobNumber(page.pageId));
    frame.word(page.copies);
    frame.word(static_cast<uint16_t>(page.printWidth));
    frame.word(static_cast<uint16_t>(page.printLength));
    appendMediaAndOptions(frame, page);
    return frame.send(writer, resultCode);
}

bool sendPrintLong(PipeWriter& writer, PageParameters& page, uint8_t sectionIndex, uint16_t* resultCode) {
    page.sectionIndex = sectionIndex;
    const bool whole = sectionIndex == 0;
    CommandFrame frame(command::printLong);
    frame.byte(jobNumber(page.pageId));
    frame.word(page.copies);
    frame.byte(sectionIndex);
    frame.doubleWord(whole ? page.printWidth : page.sectionWidth);
    frame.doubleWord(whole ? page.printLength : page.sectionLengths[sectionIndex - 1u]);
    appendMediaAndOptions(frame, page);
    return frame.send(writer, resultCode);
}

bool sendPrintExplicit(PipeWriter& writer, const ExplicitPage& page, uint16_t* resultCode) {
    CommandFrame frame(command::print);
    frame.byte(jobNumber(page.jobNumber));
    frame.word(page.copies);
    frame.word(page.width);
    frame.word(page.length);
    frame.byte(page.mediaCode);
    frame.byte(page.option);
    frame.byte(page.byte9);
    frame.word(explicitOption);
    frame.word(explicitOption);
    return frame.sendDirectly(writer, resultCode);
}

bool sendFlashLed(PipeWriter& writer, uint16_t* resultCode) {
    return CommandFrame(command::flashLed).send(writer, resultCode);
}

bool sendReset(PipeWriter& writer, uint8_t kind, uint16_t* resultCode) {
    return CommandFrame(command::reset).byte(kind).send(writer, resultCode);
}

bool sendOperationButton(PipeWriter& writer, uint8_t setting, uint16_t* resultCode) {
    return CommandFrame(command::operationButton).byte(setting).send(writer, resultCode);
}

bool sendResetErrorLog(PipeWriter& writer, uint16_t* resultCode) {
    return CommandFrame(command::resetErrorLog).send(writer, resultCode);
}

bool sendSetPrinterParameter(PipeWriter& writer, uint8_t number, uint32_t value, uint16_t* resultCode) {
    return CommandFrame(command::setPrinterParameter).byte(number).doubleWord(value).send(writer, resultCode);
}

bool sendGetStatus(PipeWriter& writer, uint16_t* resultCode) {
    return CommandFrame(command::getStatus).send(writer, resultCode);
}

bool sendGetMediaInfo(PipeWriter& writer, uint16_t* resultCode) {
    return CommandFrame(command::getMediaInfo).send(writer, resultCode);
}

bool sendGetModelName(PipeWriter& writer, uint16_t* resultCode) {
    return device::workerWrite(writer, command::getModelName, sizeof command::getModelName, resultCode);
}

bool sendGetErrorLog(PipeWriter& writer, uint16_t* resultCode) {
    return CommandFrame(command::getErrorLog).send(writer, resultCode);
}

bool sendSelfDiagnosis(PipeWriter& writer, uint8_t kind, uint8_t first, uint8_t second, uint16_t* resultCode) {
    return CommandFrame(command::selfDiagnosis).byte(kind).byte(first).byte(second).send(writer, resultCode);
}

bool sendGetSelfDiagnosisResults(PipeWriter& writer, uint16_t* resultCode) {
    return CommandFrame(command::getSelfDiagnosisResults).send(writer, resultCode);
}

bool sendGetFirmwareInfo(PipeWriter& writer, uint8_t component, uint16_t* resultCode) {
    return CommandFrame(command::getFirmwareInfo).byte(component).send(writer, resultCode);
}

bool sendUpdate(PipeWriter& writer, uint8_t target, uint32_t start, uint32_t length, uint16_t* resultCode) {
    return CommandFrame(command::update)
        .byte(target)
        .doubleWord(start)
        .doubleWord(length)
        .send(writer, resultCode);
}

bool sendGetEepromMaintenance(PipeWriter& writer, uint8_t address, uint8_t count, uint16_t* resultCode) {
    return CommandFrame(command::getEepromMaintenance).byte(address).byte(count).send(writer, resultCode);
}

bool sendSetEepromMaintenance(PipeWriter& writer, uint8_t address, uint8_t count, const uint8_t* data,
                              uint16_t* resultCode) {
    if (data == nullptr && count != 0) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    CommandFrame frame(command::setEepromMaintenance, count);
    return frame.byte(address).byte(count).bytes(data, count).send(writer, resultCode);
}

bool sendSetPrinterUniqueString(PipeWriter& writer, const uint8_t* text, uint8_t count, uint16_t* resultCode) {
    if (text == nullptr || count == 0 || count > ZPRUSB_INFO_UNIQUE_STRING_SIZE) {
        return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    }
    CommandFrame frame(command::setPrinterUniqueString, count);
    return frame.byte(count).bytes(text, count).send(writer, resultCode);
}

bool sendSetMaintenanceParams(PipeWriter& writer, const uint16_t (&values)[maintenanceParamCount],
                              uint16_t* resultCode) {
    CommandFrame frame(command::setMaintenanceParams);
    for (const uint16_t value : values) frame.word(value);
    return frame.zeros(command::setMaintenanceParams.payloadLength - sizeof values).send(writer, resultCode);
}

bool sendGetMaintenanceData(PipeWriter& writer, uint8_t first, uint8_t second, uint16_t* resultCode) {
    return CommandFrame(command::getMaintenanceData).byte(first).byte(second).send(writer, resultCode);
}

bool sendUniversal(PipeWriter& writer, const uint8_t* data, uint8_t count, uint16_t* resultCode) {
    if (data == nullptr || count == 0 || count > ZPRUSB_MAX_UNIVERSAL_SIZE) {
        return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    }
    return CommandFrame(command::universal, count).bytes(data, count).send(writer, resultCode);
}

bool sendMaintenancePermission(PipeWriter& writer, uint8_t address, uint8_t count, uint16_t* resultCode) {
    return CommandFrame(command::maintenancePermission).byte(address).byte(count).send(writer, resultCode);
}

bool sendGetPrinterUniqueString(PipeWriter& writer, uint16_t* resultCode) {
    return CommandFrame(command::getPrinterUniqueString).send(writer, resultCode);
}

}  // namespace protocol
