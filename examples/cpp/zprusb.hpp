/// The library for C++: what was opened is closed, what was begun is ended, and what fails is an exception.
#pragma once

#include <zprusb_text.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace zprusb {

class Error : public std::runtime_error {
public:
    explicit Error(std::uint16_t resultCode) : Error(resultCode, zprusb_resultWords(resultCode)) {}

    const std::uint16_t code;

private:
    Error(std::uint16_t resultCode, const zprusb_words& words)
        : std::runtime_error("code " + std::to_string(resultCode) + ": " + words.meaning + " " + words.remedy),
          code(resultCode) {}
};

/// Calls a function of the library whose last parameter is the result code.
template <class Function, class... Arguments>
void call(Function function, Arguments... arguments) {
    std::uint16_t code = ZPRUSB_UNEXPECTED;
    if (function(arguments..., &code) == 0) throw Error(code);
}

/// The calling thread's share of the library, which has to end on the same thread.
class Session {
public:
    Session() { call(zprusb_open); }
    ~Session() { zprusb_close(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    std::vector<std::uint8_t> printers() const {
        std::vector<std::uint8_t> list(ZPRUSB_MAX_PRINTERS);
        list.resize(zprusb_listupPrinter(list.data()));
        return list;
    }

    void select(std::uint8_t printer) {
        std::uint16_t code = ZPRUSB_UNEXPECTED;
        if (zprusb_selectPrinter(printer, &code) == ZPRUSB_NO_PRINTER_NUMBER) throw Error(code);
    }

    void chooseMedia(std::uint8_t code, std::uint32_t width, std::uint32_t length) {
        call(zprusb_checkMediaInfo, code, width, length);
    }
};

/// A page of the session's printer. However it ends, the printer is free for others afterwards.
class Page {
public:
    explicit Page(Session&, std::uint16_t copies = 1) {
        call(zprusb_copies, copies);
        call(zprusb_startpage, static_cast<std::uint16_t*>(nullptr));
    }
    ~Page() { zprusb_endpage(nullptr); }
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    /// @param pixels 8-bit RGB, row by row, as many rows at a time as one likes.
    void write(const std::vector<std::uint8_t>& pixels) {
        const auto size = static_cast<std::uint32_t>(pixels.size());
        call(zprusb_write, pixels.data(), &size);
    }
};

}  // namespace zprusb
