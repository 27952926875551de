/// Printers that cost nothing: what the library writes waits in a pipe, and the answers to its requests are
/// there before it asks.
#pragma once

#include <zprusb.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace bench {

/// The two pipes of a printer.
struct Printer {
    Printer();
    ~Printer();
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;

    void prepareStatus() const;           ///< Answers one GetStatus: the printer is ready.
    void prepareAcknowledgement() const;  ///< Answers one command that has no data.
    void forgetRequests() const;          ///< Makes room for more of them.

    int requests[2];    // reading end, writing end
    int answers[2];     // messages: a read takes one answer, however much room it has
    int dataPipe = -1;  // what the library writes to instead, if it is set before the library opens
};

/// Installs so many printers as the control library's. One such set exists at a time.
class Printers {
public:
    explicit Printers(size_t count);
    ~Printers();
    Printer& operator[](size_t number);
    size_t count() const;
};

/// The library, open on the installed printers.
class OpenLibrary {
public:
    OpenLibrary();
    ~OpenLibrary() { zprusb_close(); }
    OpenLibrary(const OpenLibrary&) = delete;
    OpenLibrary& operator=(const OpenLibrary&) = delete;
};

}  // namespace bench
