/// The ways in which a command ends without success, as exceptions whose text is the sentence to print.
#pragma once

#include <zprusb.h>

#include <stdexcept>
#include <string>

namespace tool {

enum ExitStatus {
    exitSuccess = 0,
    exitRefused = 1,       // the printer or the library said no
    exitWrongUsage = 2,    // a wrong argument
    exitUnusableFile = 3,  // a picture or another file that can't be used
    exitBusy = 4,          // another program is using the printer
    exitNoPrinter = 5,     // no printer, or no control library
};

/// What --help and the manual page say about them.
inline constexpr const char* exitStatusText =
    "Exit status: 0 done; 1 the printer or the library said no; 2 wrong usage; 3 the picture or file can't be "
    "used; 4 the printer is busy; 5 no printer or no control library.";

constexpr ExitStatus exitStatusOf(uint16_t code) {
    switch (code) {
        case ZPRUSB_SUCCESS:
            return exitSuccess;
        case ZPRUSB_PRINTER_BUSY:
            return exitBusy;
        case ZPRUSB_NO_CONTROL_LIBRARY:
        case ZPRUSB_NO_PRINTER_FOUND:
        case ZPRUSB_NOT_SELECTABLE:
        case ZPRUSB_NO_PRINTER:
            return exitNoPrinter;
        default:
            return exitRefused;
    }
}

class Failure : public std::runtime_error {
public:
    ExitStatus status() const { return status_; }
    uint16_t code() const { return code_; }  // ZPRUSB_SUCCESS when no result code tells the reason

protected:
    Failure(const std::string& sentence, ExitStatus status, uint16_t code)
        : std::runtime_error(sentence), status_(status), code_(code) {}

private:
    ExitStatus status_;
    uint16_t code_;
};

/// The printer or the library said no; the code decides about the exit status.
class Refusal : public Failure {
public:
    explicit Refusal(const std::string& sentence) : Failure(sentence, exitRefused, ZPRUSB_SUCCESS) {}
    Refusal(const std::string& sentence, uint16_t code) : Failure(sentence, exitStatusOf(code), code) {}
    Refusal(const std::string& sentence, uint16_t code, ExitStatus status) : Failure(sentence, status, code) {}
};

/// The caller asked for something that can't be.
class WrongUsage : public Failure {
public:
    explicit WrongUsage(const std::string& sentence) : Failure(sentence, exitWrongUsage, ZPRUSB_SUCCESS) {}
};

/// A file that isn't what it should be, can't be read or can't be written.
class UnusableFile : public Failure {
public:
    explicit UnusableFile(const std::string& sentence) : Failure(sentence, exitUnusableFile, ZPRUSB_SUCCESS) {}
};

/// @throws UnusableFile that says what is wrong with the file.
[[noreturn]] inline void refuseFile(const std::string& path, const std::string& reason) {
    throw UnusableFile("'" + path + "' " + reason);
}

}  // namespace tool
