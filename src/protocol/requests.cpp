#include "protocol/requests.h"

#include "protocol/service_sizes.h"

namespace protocol::request {

namespace {

/// The explicit print form has no arguments for the last two options of the page; it sends their values after
/// opening.
constexpr uint16_t explicitOption = 200;

/// Behind the six values of the maintenance parameters.
constexpr uint32_t unusedParamBytes = 14;

Request refused() {
    return {};
}

uint8_t jobNumber(uint16_t pageId) {
    return static_cast<uint8_t>(pageId);
}

/// What both page commands end with.
Request& appendMediaAndOptions(Request& request, const PageParameters& page) REQUIRES(device::apiLock) {
    request.byte(page.mediaCode);
    request.byte(page.printOption20);
    request.byte(0);
    request.word(page.printOption21);
    return request.word(page.printOption22);
}

}  // namespace

Request print(const PageParameters& page) {
    Request request(command::print);
    request.byte(jobNumber(page.pageId));
    request.word(page.copies);
    request.word(static_cast<uint16_t>(page.printWidth));
    request.word(static_cast<uint16_t>(page.printLength));
    return appendMediaAndOptions(request, page);
}

Request printLong(const PageParameters& page) {
    const bool whole = page.sectionIndex == 0;
    Request request(command::printLong);
    request.byte(jobNumber(page.pageId));
    request.word(page.copies);
    request.byte(page.sectionIndex);
    request.doubleWord(whole ? page.printWidth : page.sectionWidth);
    request.doubleWord(whole ? page.printLength : page.sectionLengths[page.sectionIndex - 1u]);
    return appendMediaAndOptions(request, page);
}

Request printExplicit(const ExplicitPage& page) {
    Request request(command::print);
    request.byte(jobNumber(page.jobNumber));
    request.word(page.copies);
    request.word(page.width);
    request.word(page.length);
    request.byte(page.mediaCode);
    request.byte(page.option);
    request.byte(page.byte9);
    return request.word(explicitOption).word(explicitOption);
}

Request flashLed() {
    return Request(command::flashLed);
}

Request reset(uint8_t kind) {
    return Request(command::reset).byte(kind);
}

Request operationButton(uint8_t setting) {
    return Request(command::operationButton).byte(setting);
}

Request resetErrorLog() {
    return Request(command::resetErrorLog);
}

Request setPrinterParameter(uint8_t number, uint32_t value) {
    return Request(command::setPrinterParameter).byte(number).doubleWord(value);
}

Request getStatus() {
    return Request(command::getStatus);
}

Request getMediaInfo() {
    return Request(command::getMediaInfo);
}

Request getModelName() {
    return Request::fixed(command::getModelName);
}

Request getErrorLog() {
    return Request(command::getErrorLog);
}

Request selfDiagnosis(uint8_t kind, uint8_t first, uint8_t second) {
    return Request(command::selfDiagnosis).byte(kind).byte(first).byte(second);
}

Request getSelfDiagnosisResults() {
    return Request(command::getSelfDiagnosisResults);
}

Request getFirmwareInfo(uint8_t component) {
    return Request(command::getFirmwareInfo).byte(component);
}

Request update(uint8_t target, uint32_t start, uint32_t length) {
    return Request(command::update).byte(target).doubleWord(start).doubleWord(length);
}

Request getEepromMaintenance(uint8_t address, uint8_t count) {
    return Request(command::getEepromMaintenance).byte(address).byte(count);
}

Request setEepromMaintenance(uint8_t address, uint8_t count, const uint8_t* data) {
    if (data == nullptr && count != 0) return refused();
    return Request(command::setEepromMaintenance).byte(address).byte(count).bytes(data, count);
}

Request setPrinterUniqueString(const uint8_t* text, uint8_t count) {
    if (text == nullptr || count == 0 || count > ZPRUSB_INFO_UNIQUE_STRING_SIZE) return refused();
    return Request(command::setPrinterUniqueString).byte(count).bytes(text, count);
}

Request setMaintenanceParams(const uint16_t (&values)[maintenanceParamCount]) {
    Request request(command::setMaintenanceParams);
    for (const uint16_t value : values) request.word(value);
    return request.zeros(unusedParamBytes);
}

Request getMaintenanceData(uint8_t first, uint8_t second) {
    return Request(command::getMaintenanceData).byte(first).byte(second);
}

Request universal(const uint8_t* data, uint8_t count) {
    if (data == nullptr || count == 0 || count > ZPRUSB_MAX_UNIVERSAL_SIZE) return refused();
    return Request(command::universal).bytes(data, count);
}

Request maintenancePermission(uint8_t address, uint8_t count) {
    return Request(command::maintenancePermission).byte(address).byte(count);
}

Request getPrinterUniqueString() {
    return Request(command::getPrinterUniqueString);
}

}  // namespace protocol::request
