#include <zprusb.h>

#include <chrono>

#include "commands.h"
#include "control_library.h"
#include "failure.h"
#include "findings.h"
#include "library_file.h"
#include "printer.h"
#include "result_text.h"
#include "surroundings.h"
#include "text.h"
#include "view.h"

namespace tool {
namespace {

/// @return null when it can't be used.
void* examineControlLibrary(Findings& findings) {
    constexpr const char* check = "control library";
    const std::string file = controlLibraryFile();
    const Sight seen = fileOfControlLibrary(file);
    if (!seen.remedy.empty()) {
        findings.seen(check, exitNoPrinter, seen);
        return nullptr;
    }
    std::string error;
    void* library = loadLibrary(file, error);
    if (library == nullptr) {
        findings.seen(check, exitNoPrinter, loadingFailure(file, error));
        return nullptr;
    }
    std::string lacking;
    for (const std::string& name : functionsLackingIn(library)) lacking += (lacking.empty() ? "" : ", ") + name;
    if (lacking.empty()) {
        findings.good(check, file + ", " + kindOf(library));
        return library;
    }
    findings.bad(check, exitNoPrinter, file + " lacks " + lacking,
                 "Install a control library of this library's version.");
    return nullptr;
}

void examineUsb(Findings& findings) {
    const std::vector<Sight> devices = usbDevices();
    for (const Sight& device : devices) findings.seen("USB device", exitNoPrinter, device);
    if (devices.empty()) findings.good("USB device", "the system sees none of the printers' kind");
}

/// @return the printers that another program is using, or that can't be reserved, in words; empty when there
/// are none.
std::string examineReservations(Findings& findings, const std::vector<Device>& devices) {
    constexpr const char* check = "reservation";
    std::string taken;
    for (const Device& device : devices) {
        if (!device.isPrinter()) {
            findings.good("other device", device.path + " is none of the printers' kind");
            continue;
        }
        const std::string name = "printer " + std::to_string(device.number);
        const std::string whole = name + ", serial " + serialIn(device.path);
        const Use use = useOf(device);
        if (use == Use::none) {
            findings.good(check, whole + ", is free");
        } else if (use == Use::leftByKilled) {
            findings.good(check, whole + ", was left by a program that was killed; it is free now");
        } else if (use == Use::inUse) {
            findings.bad(check, exitBusy, whole + ", is being used by " + userOf(device.path),
                         resultWords(ZPRUSB_PRINTER_BUSY).remedy);
        } else {
            findings.bad(check, exitRefused, whole + ", can't be reserved",
                         "Look at the lock files above, and whether the system has memory left.");
        }
        if (use == Use::inUse || use == Use::unknown) taken += (taken.empty() ? "" : ", ") + name;
    }
    return taken;
}

/// The lines that people are shown of a record, in one.
std::string inOneLine(const std::string& lines) {
    std::string line;
    for (const char letter : lines) {
        const bool afterBlank = line.empty() || line.back() == ' ';
        if (letter == '\n') {
            line += ';';
        } else if (letter != ' ' || !afterBlank) {
            line += letter;
        }
    }
    return line.substr(0, line.find_last_not_of("; ") + 1);
}

/// @return whether the printer answers.
bool examineCondition(Findings& findings, const Printer& printer, uint8_t number, const std::string& name) {
    constexpr const char* check = "condition";
    const auto start = Clock::now();
    const uint16_t code = printer.status({number}).front();
    const std::chrono::duration<double, std::milli> time = Clock::now() - start;
    const std::string answer = name + " answers in " + decimal(time.count()) + " ms, ";
    const bool answers = code != ZPRUSB_COMMUNICATION && code != ZPRUSB_NO_PRINTER;
    if (code == ZPRUSB_SUCCESS) {
        findings.good(check, answer + "ready");
    } else {
        findings.bad(check, code, answers ? answer : name + " does not answer as it should, ");
    }
    return answers;
}

void examineRecord(Findings& findings, const Printer& printer, const InfoKind& kind, const std::string& name) {
    const char* check = kind.word.c_str();
    try {
        const View record = kind.view(printer.read(kind));
        if (record.data.empty()) {
            findings.bad(check, ZPRUSB_COMMUNICATION, name + " tells none, ");
        } else {
            findings.good(check, name + ": " + inOneLine(record.text));
        }
    } catch (const Refusal& refusal) {
        findings.bad(check, refusal.code(), name + ", ");
    }
}

void examinePrinter(Findings& findings, Printer& printer, uint8_t number) {
    const std::string name = "printer " + std::to_string(number);
    try {
        printer.select(number);
    } catch (const Refusal& refusal) {
        return findings.bad("selection", refusal.code(), name + ", ");
    }
    const bool answers = examineCondition(findings, printer, number, name);
    for (const uint16_t tag : {ZPRUSB_INFO_MEDIA, ZPRUSB_INFO_FIRMWARE}) {
        const InfoKind& kind = infoKind(tag);
        if (answers) {
            examineRecord(findings, printer, kind, name);
        } else {
            findings.skipped(kind.word.c_str(), name + " does not answer");
        }
    }
}

void examinePrinters(Findings& findings, const PrinterChoice& choice) {
    try {
        Printer printer(choice);
        findings.good("printers", counted(printer.all().size(), "printer", "printers"));
        for (const FoundPrinter& found : printer.all()) examinePrinter(findings, printer, found.number);
    } catch (const Refusal& refusal) {
        const std::string words = refusal.what();
        findings.bad("printers", refusal.code(), words.substr(0, words.find("code ")));
        if (!choice.who.empty()) examinePrinters(findings, {"", choice.waitSeconds});  // those that are there
    }
}

}  // namespace

int run(const CommonArguments& common, const DoctorArguments&) {
    Findings findings;
    findings.good("library", fileOfLibrary());
    void* library = examineControlLibrary(findings);
    if (library != nullptr)
        for (const std::string& words : interfacesSeenBy(library)) findings.good("interface", words);
    for (const Sight& folder : lockFolders()) findings.seen("lock files", exitRefused, folder);
    examineUsb(findings);
    if (library == nullptr) {
        for (const char* check : {"reservation", "printers"})
            findings.skipped(check, "there is no control library that can be used");
    } else if (const std::string taken = examineReservations(findings, connectedDevices()); !taken.empty()) {
        findings.skipped("printers", "the search for them would wait for " + taken);
    } else {
        examinePrinters(findings, common.printer);
    }
    show(findings.view(), common.json);
    return findings.status();
}

}  // namespace tool
