#include <zprusb.h>

#include <chrono>
#include <filesystem>

#include "commands.h"
#include "control_library.h"
#include "failure.h"
#include "library_file.h"
#include "printer.h"
#include "result_text.h"
#include "surroundings.h"
#include "system.h"
#include "text.h"
#include "view.h"

namespace tool {
namespace {

constexpr const char* functions[] = {"SDKUsb_Open",
                                     "SDKUsb_OpenEx",
                                     "SDKUsb_Close",
                                     "SDKUsb_GetDeviceHandle",
                                     "SDKUsb_GetDeviceName",
                                     "SDKUsb_GetDeviceIDString",
                                     "SDKUsb_GetPipeHandle",
                                     "SDKUsb_ClosePipe",
                                     "SDKUsb_AbortPipe",
                                     "SDKUsb_ResetPipe",
                                     "SDKUsb_CheckDeviceName",
                                     "SDKUsb_CheckDevice",
                                     "SDKUsb_ResetDevice"};

/// What was found, in the order in which it was looked at. The first trouble decides about the exit status.
class Findings {
public:
    void good(const char* check, const std::string& found) { add(check, true, found, ""); }

    void bad(const char* check, ExitStatus status, const std::string& found, const std::string& remedy) {
        add(check, false, found, remedy);
        if (status_ == exitSuccess) status_ = status;
    }

    void bad(const char* check, uint16_t code, const std::string& found) {
        const ResultWords words = resultWords(code);
        bad(check, exitStatusOf(code), found + "code " + std::to_string(code) + ": " + words.meaning,
            words.remedy);
    }

    int status() const { return status_; }

    View view() const { return {{{"healthy", status_ == exitSuccess}, {"findings", data_}}, text_}; }

private:
    void add(const char* check, bool good, const std::string& found, const std::string& remedy) {
        const std::string shown = harmless(found);
        data_.push_back({{"check", check}, {"good", good}, {"found", shown}, {"remedy", remedy}});
        text_ += std::string(good ? "ok    " : "WRONG ") + padded(check, 16) + shown + "\n";
        if (!good) text_ += "      " + padded("", 16) + remedy + "\n";
    }

    Json data_ = Json::array();
    std::string text_;
    ExitStatus status_ = exitSuccess;
};

std::string kindOf(void* library, const std::vector<Device>& devices) {
    if (findSymbol(library, "zprusbsim_configure") != nullptr) return "the simulator";
    return devices.empty() ? "not the simulator" : "not the simulator; its devices are " + devices.front().path;
}

/// @return null when it can't be used.
void* examineControlLibrary(Findings& findings) {
    const std::string file = controlLibraryFile();
    constexpr const char* check = "control library";
    const std::string fault = faultOfLibraryFile(file);
    if (!fault.empty()) {
        findings.bad(check, exitNoPrinter, file + " " + fault, resultWords(ZPRUSB_NO_CONTROL_LIBRARY).remedy);
        return nullptr;
    }
    std::string error;
    void* library = loadLibrary(file, error);
    if (library == nullptr) {
        findings.bad(check, exitNoPrinter, file + " can't be loaded: " + error, missingNeedsOf(file));
        return nullptr;
    }
    std::string lacking;
    for (const char* name : functions)
        if (findSymbol(library, name) == nullptr) lacking += (lacking.empty() ? "" : ", ") + std::string(name);
    if (lacking.empty()) return library;
    findings.bad(check, exitNoPrinter, file + " lacks " + lacking,
                 "Install a control library of this library's version.");
    return nullptr;
}

void examineLockFolder(Findings& findings) {
    const auto folder = lockFolder();
    if (folder.path.empty()) return;
    if (folder.writable) {
        findings.good("lock files", folder.path);
    } else {
        findings.bad("lock files", exitRefused, folder.path + " can't be written",
                     "Give all users the right to write there (mode 1777), and free space.");
    }
}

void examineUsb(Findings& findings) {
    for (const UsbDevice& device : usbPrinters()) {
        if (device.permitted) {
            findings.good("USB device", device.path);
        } else {
            findings.bad("USB device", exitNoPrinter, device.path + " may not be opened by this user",
                         "Give this user the right to read and write it, for example with a udev rule.");
        }
    }
}

bool examineReservations(Findings& findings, const std::vector<Device>& devices) {
    bool free = true;
    for (const Device& device : devices) {
        const std::string name =
            "printer " + std::to_string(device.number) + ", serial " + serialIn(device.path);
        switch (useOf(device)) {
            case Use::none:
                findings.good("reservation", name + ", is free");
                break;
            case Use::leftByKilled:
                findings.good("reservation", name + ", was left by a program that was killed; it is free now");
                break;
            case Use::inUse:
                findings.bad("reservation", exitBusy, name + ", is being used by " + userOf(device.path),
                             resultWords(ZPRUSB_PRINTER_BUSY).remedy);
                free = false;
                break;
            case Use::unknown:
                findings.bad("reservation", exitRefused, name + ", can't be reserved",
                             resultWords(ZPRUSB_UNEXPECTED).remedy);
                free = false;
        }
    }
    return free;
}

void examinePrinter(Findings& findings, Printer& printer, uint8_t number) {
    const std::string name = "printer " + std::to_string(number);
    printer.select(number);
    const auto start = Clock::now();
    const uint16_t code = printer.status({number}).front();
    const std::chrono::duration<double, std::milli> time = Clock::now() - start;
    const std::string answer = name + " answers in " + decimal(time.count()) + " ms, ";
    if (code == ZPRUSB_SUCCESS) {
        findings.good("condition", answer + "ready");
    } else {
        findings.bad("condition", code, answer);
    }
    for (const uint16_t tag : {ZPRUSB_INFO_MEDIA, ZPRUSB_INFO_FIRMWARE}) {
        const InfoKind& kind = infoKind(tag);
        try {
            const Json data = kind.view(printer.read(kind)).data;
            if (data.empty()) {
                findings.bad(kind.word.c_str(), ZPRUSB_COMMUNICATION, name + " tells none; ");
            } else {
                findings.good(kind.word.c_str(),
                              name + ": " + counted(data.size(), "entry", "entries") + ", " + data[0].dump());
            }
        } catch (const Refusal& refusal) {
            findings.bad(kind.word.c_str(), refusal.status(), refusal.what(), "Look at the condition above.");
        }
    }
}

void examinePrinters(Findings& findings, const CommonArguments& common) {
    try {
        Printer printer(common.printer);
        findings.good("printers", counted(printer.all().size(), "printer", "printers"));
        for (const FoundPrinter& found : printer.all()) examinePrinter(findings, printer, found.number);
    } catch (const Refusal& refusal) {
        if (refusal.code() != ZPRUSB_SUCCESS) {
            findings.bad("printers", refusal.code(), "");
        } else {
            findings.bad("printers", refusal.status(), refusal.what(), "");
        }
    }
}

}  // namespace

int run(const CommonArguments& common, const DoctorArguments&) {
    Findings findings;
    findings.good("library", fileOfLibrary());
    examineLockFolder(findings);
    examineUsb(findings);
    if (void* library = examineControlLibrary(findings)) {
        const std::vector<Device> devices = connectedPrinters();
        findings.good("control library", controlLibraryFile() + ", " + kindOf(library, devices));
        if (examineReservations(findings, devices)) examinePrinters(findings, common);
    }
    show(findings.view(), common.json);
    return findings.status();
}

}  // namespace tool
