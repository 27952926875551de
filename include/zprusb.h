/// @file zprusb.h
/// The public interface of the RQX5820 USB printer library.
///
/// A first print, with every check left out:
///
///     uint16_t code, page;
///     uint32_t size = 1800 * 1200 * 3;  // width x height x 3 bytes of RGB, 300 dots per inch
///     zprusb_open(&code);
///     zprusb_checkMediaInfo(0xF1, 15240, 10160, &code);  // 6 x 4 inch, in 1/100 mm
///     zprusb_startpage(&page, &code);
///     zprusb_write(pixels, &size, &code);
///     zprusb_endpage(&code);
///     zprusb_close();
///
/// What holds for every function, unless it says otherwise:
///
/// **Results.** The return value is 1 for success and 0 for failure. `resultCode` receives one of the codes of
/// #ZPRUSB_RESULT_CODES, on success and on failure; it may be null. Each function lists the codes that it can
/// give. *The printer's codes* are those by which the printer tells its state: 2100, 2101, 2103 to 2109, 2200
/// to 2202, 2209 to 2212, 2305 to 2307, 2309, 2310 and 2500. `zprusb_text.h` puts codes into words.
///
/// **Memory.** All buffers belong to the caller; the library keeps no pointer after it has returned. A pointer
/// must not be null unless its description says what null means. Numbers of several bytes within data are
/// little-endian.
///
/// **Threads.** Every function may be called by any thread, and works with the printer object that the calling
/// thread was bound to by zprusb_open(). While there is only one object, all threads share it. With several, a
/// thread that is bound to none gets 1501. The calls of a process take turns: each holds one lock, the
/// library's, from its start to its end, so a call may first wait for as long as the others take. Only
/// zprusb_copies() and zprusb_endpage() don't wait.
///
/// **Reservation.** A function that talks to a printer first reserves it among all threads and processes of the
/// machine and gives it free at its end. It waits at most 500 ms for that; a printer that is still reserved
/// then, or whose last owner ended without giving it free, is 1500.
///
/// **Time limits.** The printer may take 10 s for each request and 10 s for each answer; to end a transfer that
/// takes longer costs up to 1 s more. One *exchange* of a request and its answer therefore ends within 21 s.
/// After a time-out the answer may still come and would be taken for the next one: close and open the library.
/// A function that is said to *try 4 times* does so without a pause when it fails, whatever the code. "Longest"
/// tells how long a function can take by itself when each of its exchanges comes to an end just within its
/// limits; an idle printer answers within milliseconds.
#ifndef ZPRUSB_H
#define ZPRUSB_H

#include <stdint.h>

/// The version that this header belongs to. Programs need to be changed when this grows.
#define ZPRUSB_VERSION_MAJOR 0
/// Grows with what the library can do.
#define ZPRUSB_VERSION_MINOR 1
/// Grows with repairs.
#define ZPRUSB_VERSION_PATCH 0

#if defined(__GNUC__) && !defined(_WIN32)
#define ZPRUSB_API __attribute__((visibility("default")))
#else
#define ZPRUSB_API
#endif

/// Every result code: number, name, meaning, likely cause, and what to do about it.
/// Use it with a macro of five parameters to make a switch or a table of one's own.
/// What the conditions 2101 to 2109 and the notices 2200 to 2212 stand for is the printer maker's knowledge;
/// the printer's display tells it.
// clang-format off
#define ZPRUSB_RESULT_CODES(X) \
    X(0, SUCCESS, "Success.", \
      "All went well.", \
      "Nothing is to be done.") \
    X(1000, OUT_OF_MEMORY, "There is not enough memory.", \
      "The system has no more memory for the process.", \
      "Close other programs and try again.") \
    X(1002, NO_CONTROL_LIBRARY, "The control library is missing beside this library, or it is incomplete.", \
      "The printer maker's library was not installed, is of another kind, or needs a file that is missing.", \
      "Put the printer's control library, or the simulator, into the folder of this library.") \
    X(1004, NO_PRINTER_FOUND, "No printer was found.", \
      "No printer is connected or switched on, or the user may not use USB devices.", \
      "Connect the printer by USB, switch it on, and open again.") \
    X(1005, FILE_FAILED, "A firmware file cannot be opened, read or written.", \
      "The path is wrong, the file is too large or no regular file, or the user may not use it.", \
      "Check that the file is there, is complete, and may be read.") \
    X(1006, BAD_ARGUMENT, "An argument is outside its allowed range, or the media size is not offered.", \
      "The program passed a wrong value, or the printer holds another medium than expected.", \
      "Compare the arguments with the ranges in the documentation and with the printer's media list.") \
    X(1008, NOT_SELECTABLE, "The printer that was asked for is not present.", \
      "The printer was unplugged, or the number or label is not in the list.", \
      "List the printers and choose one of them.") \
    X(1500, PRINTER_BUSY, "Another thread or program is using the printer.", \
      "A page is being printed, or a program that was using the printer has just ended in the middle of it.", \
      "Wait until its page has ended and try again.") \
    X(1501, NO_OBJECT, "The calling thread has no printer object.", \
      "The library is not open, or more threads use it than there are printer objects.", \
      "Call zprusb_open on this thread first, and make as many objects as there are threads.") \
    X(1502, STILL_IN_USE, "The printer objects cannot be released while a thread is still bound to one.", \
      "A thread has not called zprusb_close.", \
      "Call zprusb_close on every thread that called zprusb_open.") \
    X(2000, NO_PRINTER, "No printer is selected, or the selected printer is no longer connected.", \
      "The printer was unplugged or switched off.", \
      "Connect the printer, list the printers and select one.") \
    X(2100, CONDITION_2100, "The printer is not ready: condition 2100.", \
      "It is printing or warming up.", \
      "Wait until the printer has finished, or look at its display.") \
    X(2101, CONDITION_2101, "The printer reports condition 2101.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2103, CONDITION_2103, "The printer reports condition 2103.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2104, CONDITION_2104, "The printer reports condition 2104.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2105, CONDITION_2105, "The printer reports condition 2105.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2106, CONDITION_2106, "The printer reports condition 2106.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2107, CONDITION_2107, "The printer reports condition 2107.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2108, CONDITION_2108, "The printer reports condition 2108.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2109, CONDITION_2109, "The printer reports condition 2109.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2200, NOTICE_2200, "The printer gives notice 2200.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2201, NOTICE_2201, "The printer gives notice 2201.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2202, NOTICE_2202, "The printer gives notice 2202.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2209, NOTICE_2209, "The printer gives notice 2209.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2210, NOTICE_2210, "The printer gives notice 2210.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2211, NOTICE_2211, "The printer gives notice 2211.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2212, NOTICE_2212, "The printer gives notice 2212.", \
      "Only the printer can tell.", \
      "Look at the printer's display.") \
    X(2305, DEVICE_ERROR_2305, "The printer reports a device error of group 6, details 5 to 9.", \
      "A part of the printer failed.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2306, DEVICE_ERROR_2306, "The printer reports a device error of group 6, details 2 to 4.", \
      "A part of the printer failed.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2307, DEVICE_ERROR_2307, "The printer reports a device error of group 5.", \
      "A part of the printer failed.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2309, DEVICE_ERROR_2309, "The printer reports a device error of group 6, detail 1 or 11.", \
      "A part of the printer failed.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2310, DEVICE_ERROR_2310, "The printer reports a device error of group 6, detail 16.", \
      "A part of the printer failed.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2500, DEVICE_ERROR_2500, "The printer reports a device error of group 1 to 4.", \
      "A part of the printer failed.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2504, UNEXPECTED, "The printer or the operating system reported something unexpected.", \
      "The answer was not one of those that are known, or the system refused a lock.", \
      "Try again; if it returns, close and open the library.") \
    X(2600, COMMUNICATION, "The communication with the printer failed.", \
      "The cable was pulled, the printer was switched off, or it did not answer in time.", \
      "Check the cable and that the printer is on; then close and open the library.") \
    X(2601, ANSWER_ERROR_1, "The printer refused the request with error 1.", \
      "Printer and library disagree about the request.", \
      "Close and open the library, and try again.") \
    X(2602, ANSWER_ERROR_2, "The printer refused the request with error 2.", \
      "Printer and library disagree about the request.", \
      "Close and open the library, and try again.") \
    X(2603, ANSWER_ERROR_3, "The printer refused the request with error 3.", \
      "Printer and library disagree about the request.", \
      "Close and open the library, and try again.") \
    X(2604, ANSWER_ERROR_4, "The printer refused the request with error 4.", \
      "Printer and library disagree about the request.", \
      "Close and open the library, and try again.") \
    X(2605, ANSWER_ERROR_5, "The printer refused the request with error 5.", \
      "Printer and library disagree about the request.", \
      "Close and open the library, and try again.") \
    X(3001, NOT_S_RECORDS, "The firmware file is not S-record text.", \
      "It is another file, or it is compressed.", \
      "Choose the right file.") \
    X(3002, BAD_CHECKSUM, "A checksum in the firmware file does not match.", \
      "The file was damaged on its way.", \
      "Get an undamaged copy of the file.") \
    X(3003, BAD_ADDRESS, "An address in the firmware file lies outside the permitted range.", \
      "The file is for another device, or more than 512 KiB lie between its first and its last byte.", \
      "Choose the right file.") \
    X(3200, UPDATE_REFUSED, "The printer did not accept the start of the firmware update.", \
      "The printer is busy or does not take such an update.", \
      "Check target, start and length, and that the printer is ready.") \
    X(8000, DIAGNOSIS_WITH_2106, "Self-diagnosis results came together with condition 2106.", \
      "The condition arose during the diagnosis.", \
      "Look at the printer's display and run the diagnosis again.")
// clang-format on

#define ZPRUSB_ENUMERATOR(number, name, meaning, cause, remedy) ZPRUSB_##name = (number),
/// The values of every `resultCode`.
enum zprusb_resultCode { ZPRUSB_RESULT_CODES(ZPRUSB_ENUMERATOR) ZPRUSB_RESULT_CODE_END };
#undef ZPRUSB_ENUMERATOR

/// Tags of zprusb_getPrinterInfo(): number, name, record size in bytes, content.
// clang-format off
#define ZPRUSB_INFO_TAGS(X) \
    X(0, MEDIA, 151, "media sizes: a count byte, then 30 bytes for each of at most 5 sizes") \
    X(3, FIRMWARE, 267, "firmware: the byte 7, then 38 bytes for each of 7 components") \
    X(4, COUNTERS, 28, "seven 32-bit counters; counter n can be reset as number n, the first one can't") \
    X(7, DEVICE_ERROR, 2, "group and detail of the present device error, or two zero bytes") \
    X(16, STATUS_BYTES, 16, "bytes of the status answer; the first one is the last job number") \
    X(25, UNIQUE_STRING, 23, "the string that was stored in the printer to tell it from others") \
    X(26, MAINTENANCE, 18, "8 bytes of maintenance memory from address 0x20, then 10 bytes of maintenance data") \
    X(50, ERROR_LOG, 61, "the error log")
// clang-format on

#define ZPRUSB_ENUMERATOR(tag, name, size, content) ZPRUSB_INFO_##name = (tag),
/// The tags of zprusb_getPrinterInfo().
enum zprusb_infoTag { ZPRUSB_INFO_TAGS(ZPRUSB_ENUMERATOR) ZPRUSB_INFO_END };
#undef ZPRUSB_ENUMERATOR
#define ZPRUSB_ENUMERATOR(tag, name, size, content) ZPRUSB_INFO_##name##_SIZE = (size),
/// The size of each of its records in bytes.
enum zprusb_infoSize { ZPRUSB_INFO_TAGS(ZPRUSB_ENUMERATOR) ZPRUSB_INFO_SIZE_END };
#undef ZPRUSB_ENUMERATOR

/// Tags of zprusb_setPrinterInfo(): number, name, length of the data in bytes (0: variable), content.
// clang-format off
#define ZPRUSB_SETTING_TAGS(X) \
    X(20, OPTION20, 1, "print option 20; 1 after every selection of a printer by number") \
    X(21, OPTION21, 2, "print option 21, little-endian; 200 after opening") \
    X(22, OPTION22, 2, "print option 22, little-endian; 200 after opening") \
    X(23, BUTTON, 1, "operation button, 1 or 2") \
    X(24, PARAMETER, 4, "printer parameter 1, little-endian") \
    X(25, UNIQUE_STRING, 0, "the printer's unique string, 1 to 23 bytes") \
    X(26, UNIQUE_STRING_NOT_8, 0, "as 25, but 8 bytes are refused; of a longer length the low 8 bits count")
// clang-format on

#define ZPRUSB_ENUMERATOR(tag, name, size, content) ZPRUSB_SET_##name = (tag),
/// The tags of zprusb_setPrinterInfo().
enum zprusb_settingTag { ZPRUSB_SETTING_TAGS(ZPRUSB_ENUMERATOR) ZPRUSB_SET_END };
#undef ZPRUSB_ENUMERATOR

/// Sizes and limits.
enum zprusb_size {
    ZPRUSB_MAX_OBJECTS = 100,        ///< objects that zprusb_MakeObject() makes at most
    ZPRUSB_MAX_PRINTERS = 128,       ///< bytes of the list of zprusb_listupPrinter()
    ZPRUSB_LABEL_SIZE = 23,          ///< bytes of one printer label, not terminated
    ZPRUSB_NO_PRINTER_NUMBER = 255,  ///< no printer; also asks zprusb_selectPrinter() for the present one
    ZPRUSB_LIST_END = 0xFF,          ///< fills and ends lists of printer numbers
    ZPRUSB_MAX_COPIES = 999,
    ZPRUSB_MAX_SECTION = 5,  ///< sections of a long page
    ZPRUSB_MEDIA_ENTRY_SIZE = 30,
    ZPRUSB_FIRMWARE_ENTRY_SIZE = 38
};

#ifdef __cplusplus
extern "C" {
#endif

/// @name Objects and opening
/// @{

/// Makes and opens printer objects, so that several threads can each work with a printer of their own. Needs no
/// object. The objects exist until zprusb_ReleaseObject() or the last zprusb_close().
/// @param objectCount how many there shall be, 1 to 100; not below the present number.
/// @return 1 when all of them are open; 0 when the number is refused, or when one can't be opened for the
///         reasons of zprusb_open(): those that were opened before it stay.
/// @note Longest: milliseconds; without limit where it searches the printers, which it does when no object was
/// open, and one of them is reserved by another process.
ZPRUSB_API uint32_t zprusb_MakeObject(uint16_t objectCount);

/// Releases all printer objects and sets their number back to 1. Pages that are open lose their printers.
/// @param resultCode 0; 1502 when a thread is still bound (nothing changes).
/// @return 1; 0 on failure.
/// @note Longest: 50 ms, and the time that the control library takes to close the printers.
ZPRUSB_API uint32_t zprusb_ReleaseObject(uint16_t* resultCode);

/// Tells how many threads are bound and how many objects there are.
/// @param boundThreads receives the number of bound threads, 0 to 100; may be null.
/// @param objectCount receives the number of objects, 1 to 100; may be null.
/// @return always 1.
ZPRUSB_API uint32_t zprusb_attachObjectCount(uint16_t* boundThreads, uint16_t* objectCount);

/// Opens the library: loads the control library, searches the printers, binds the calling thread to the lowest
/// free object and selects printer 0, if there is one of that number. Opens every object that is not open.
/// Opening again on the same thread changes nothing.
/// @param resultCode 0; 1000; 1002; 1004; 1501 when all objects are bound to other threads.
/// @return 1; 0 on failure.
/// @note Longest: milliseconds; without limit where it searches the printers, which is at the first opening,
/// and one of them is reserved by another process.
ZPRUSB_API uint32_t zprusb_open(uint16_t* resultCode);

/// Unbinds the calling thread. When no thread is bound any more, releases all objects and ends the library's
/// background thread. The thread's own open page should have been ended before: see zprusb_endpage().
/// @note Longest: 50 ms, the time that the control library takes to close the printers, and 5 s for the
/// background thread.
ZPRUSB_API void zprusb_close(void);

/// @}
/// @name Finding and selecting printers
/// @{

/// Searches the printers and lists their numbers. Needs an open library, but no bound thread. If the first
/// object has a printer selected, the calling thread selects that printer anew, as by zprusb_selectPrinter(): a
/// thread with an object of its own has to select its printer again.
/// @param list 128 bytes: receives the numbers, in the order in which the printers were found; the rest is
///        0xFF. A number is 0 to 127 and stays the printer's while it is connected. Null lists nothing.
/// @return the number of printers found, 0 to 128; 0 before zprusb_open().
/// @note Longest: milliseconds; without limit when a printer that was not there at the last search is reserved
/// by another process.
ZPRUSB_API uint32_t zprusb_listupPrinter(uint8_t* list);

/// Searches the printers, as zprusb_listupPrinter() does, and lists their labels.
/// @param labels 2944 bytes: receives 23 bytes for each printer found, in the same order and without a
///        terminating zero; the rest is zero. Null lists nothing.
/// @return the number of printers found, 0 to 127; 0 also when there are 128.
/// @note Longest: as zprusb_listupPrinter().
ZPRUSB_API uint32_t zprusb_listupPrinterLbl(char* labels);

/// Selects the printer that the calling thread works with, and sets its print option 20 back to 1. A thread
/// that is not bound is bound to the lowest free object first.
/// @param printerNumber a number from zprusb_listupPrinter(); 255 asks for the present selection and changes
///        nothing.
/// @param resultCode 0; 1008 when that printer is not present, or none is selected; 1501.
/// @return the number of the selected printer, or 255 on failure.
ZPRUSB_API uint32_t zprusb_selectPrinter(uint8_t printerNumber, uint16_t* resultCode);

/// Selects the printer with the given label. A thread that is not bound is bound to the lowest free object
/// first.
/// @param label 23 bytes, not terminated, as zprusb_listupPrinterLbl() gives it; null asks for the present
///        selection.
/// @param resultCode 0; 1008 when no present printer has that label; 1501; 2000 when null is given and no
///        printer is selected.
/// @return the label that the object has selected: 23 bytes, not terminated, the library's, valid until the
///         objects are released, and the former selection's after 1008. Null when there is no object, or when
///         null was given and no printer is selected.
ZPRUSB_API char* zprusb_selectPrinterLbl(const char* label, uint16_t* resultCode);

/// @}
/// @name Information and settings
/// @{

/// Reads information from the printer. Tries 4 times.
/// @param tag one of ::zprusb_infoTag; the sizes of the records are in ::zprusb_infoSize.
/// @param buffer receives the record; null asks for its size only.
/// @param length on entry the capacity of the buffer in bytes; on return the bytes that were copied, or the
///        size of the record for a null buffer. A smaller buffer receives the first part of the record. Null is
///        a failure.
/// @return 1; 0 for an unknown tag, without an object or when the printer can't be reserved or asked. On
///         failure the length is 0, or untouched without an object, when the printer can't be reserved, or when
///         the tag is 4 or 26.
/// @note Longest: 170 s; 254 s for tag 26; 674 s for the tags 3 and 4; 86 s for a null buffer. 2 s when the
/// printer is reserved.
ZPRUSB_API uint32_t zprusb_getPrinterInfo(uint16_t tag, uint8_t* buffer, uint32_t* length);

/// Changes a setting of the object or of the printer. Tries 4 times.
/// @param tag one of ::zprusb_settingTag; 20 to 22 are the object's and go with the next pages, the others are
///        the printer's.
/// @param data the value: as many bytes as the table of tags says. Null is 1006.
/// @param length number of bytes of the data; only the tags 25 and 26 read it, for which null is 1006. Never
///        changed.
/// @param resultCode 0; 1006 for another tag, or a value or length outside its range; 1500; 1501; 2000; 2504;
///        2600; the printer's codes.
/// @return 1; 0 on failure.
/// @note Longest: 86 s; 2 s for the tags 20 to 22, or when the printer is reserved.
ZPRUSB_API uint32_t zprusb_setPrinterInfo(uint16_t tag, const uint8_t* data, const uint32_t* length,
                                          uint16_t* resultCode);

/// @}
/// @name Status
/// @{

/// Asks the printer for its status. Tries 4 times.
/// @param resultCode 0 when it is ready; 1500; 1501; 2000; 2504; 2600; the printer's codes.
/// @return 1 when it is ready.
/// @note Longest: 86 s; 2 s when the printer is reserved.
ZPRUSB_API uint32_t zprusb_status(uint16_t* resultCode);

/// Asks several printers for their status, one after the other. Each is asked once; the selection stays as it
/// is.
/// @param printerList printer numbers, ended by 0xFF; at most 128 are read. Null is a failure.
/// @param results one element for each number of the list: receives the codes of zprusb_status(), with 2000 for
///        a number of no printer, and 1501 in all of them without an object. Null is a failure.
/// @return 1 when at least one printer is ready.
/// @note Longest: 21.5 s for each printer; 0.5 s for each that is reserved.
ZPRUSB_API uint32_t zprusb_statusAll(const uint8_t* printerList, uint16_t* results);

/// @}
/// @name Media and counters
/// @{

/// Chooses the media size of the following pages; the printer's list must offer it. Tries 4 times.
/// @param mediaCode code of the media list. 0xF0 to 0xFE name exact sizes, all others a variable length.
/// @param width width in 1/100 mm, as in the media list.
/// @param length length in 1/100 mm: as in the media list, or from 7112 to the longest length for a variable
///        one. Where the list says 0 for the longest length, that is 25120 with the codes 0xE0 to 0xEF, and
///        none with others.
/// @param resultCode 0; 1006 when the size is not offered, or is 0 (the former choice stays); 1500; 1501; 2000;
///        2504; 2600 to 2605; the printer's codes.
/// @return 1; 0 on failure.
/// @note Longest: 86 s; 2 s when the printer is reserved.
ZPRUSB_API uint32_t zprusb_checkMediaInfo(uint8_t mediaCode, uint32_t width, uint32_t length,
                                          uint16_t* resultCode);

/// Sets one of the printer's counters to zero. Tries 4 times.
/// @param counterNumber 1 to 6, its place in the record of tag 4, whose first counter is number 0.
/// @param resultCode 0; 1006; 1500; 1501; 2000; 2504; 2600; the printer's codes.
/// @return 1; 0 on failure.
/// @note Longest: 170 s; 2 s when the printer is reserved.
ZPRUSB_API uint32_t zprusb_resetCounter(uint8_t counterNumber, uint16_t* resultCode);

/// @}
/// @name Pages
/// @{

/// Sets the number of copies of the next page. Sends nothing and waits for nothing.
/// @param copies 1 to 999; 1 after opening and after each zprusb_endpage().
/// @param resultCode 0; 1006; 1501.
/// @return 1; 0 on failure.
ZPRUSB_API uint32_t zprusb_copies(uint16_t copies, uint16_t* resultCode);

/// Starts a page. On success the printer stays reserved for the calling thread until zprusb_endpage(). Tries 4
/// times.
/// @param pageId receives printer number x 256 + job number; 0 on failure, or the number that the page would
///        have had when the printer refused it at the end. May be null.
/// @param resultCode 0; 1006 when the number of copies is outside its range; 1500; 1501; 2000; 2504; 2600; the
///        printer's codes.
/// @return 1; 0 on failure.
/// @note Longest: 422 s; 2 s when the printer is reserved.
ZPRUSB_API uint32_t zprusb_startpage(uint16_t* pageId, uint16_t* resultCode);

/// Starts one section of a long page. Section 0, the whole print, reserves the printer until zprusb_endpage(),
/// as zprusb_startpage() does; the others are started while it is. A section that fails gives the printer free.
/// Tries 4 times.
/// @param pageId as for zprusb_startpage().
/// @param sectionIndex 0: the whole print; 1 to 5: a section.
/// @param resultCode as for zprusb_startpage(); 1006 also for a section above 5.
/// @return 1; 0 on failure.
/// @note Longest: 422 s; 2 s when the printer is reserved.
ZPRUSB_API uint32_t zprusb_startpagelong(uint16_t* pageId, uint8_t sectionIndex, uint16_t* resultCode);

/// Sends image data of the started page: 8-bit RGB, row by row from the top, 300 dots per inch, in as many
/// calls as the caller likes. Does not reserve the printer: the page's start has.
/// @param data the bytes. Null is 1006.
/// @param length number of bytes; not changed. Null is 1006. With 0, nothing is sent, 0 is returned and no code
///        is written.
/// @param resultCode 0; 1006; 1501; 2600, when a part of the data may have been sent.
/// @return 1; 0 on failure.
/// @note Longest: for as long as the printer does not take the data. There is no time-out, and other threads'
/// calls wait.
ZPRUSB_API uint32_t zprusb_write(const uint8_t* data, const uint32_t* length, uint16_t* resultCode);

/// Ends the page: gives the printer free and sets the number of copies back to 1. Must come from the thread
/// that started the page, also when the page failed in between; from another thread it gives nothing free.
/// Sends nothing and waits for nothing.
/// @param resultCode 0; 1501.
/// @return 1; 0 on failure.
ZPRUSB_API uint32_t zprusb_endpage(uint16_t* resultCode);

/// @}
/// @name Control
/// @{

/// Makes the printer's LED flash.
/// @param resultCode 0; 1500; 1501; 2000; 2504; 2600 for whatever else went wrong.
/// @return 1; 0 on failure.
/// @note Longest: 42.5 s; 0.5 s when the printer is reserved.
ZPRUSB_API uint32_t zprusb_blinkLED(uint16_t* resultCode);

/// Resets the printer. Does not wait until it has started again.
/// @param resultCode 0; 1500; 1501; 2000; 2504; 2600 for whatever else went wrong.
/// @return 1; 0 on failure.
/// @note Longest: 42.5 s; 0.5 s when the printer is reserved.
ZPRUSB_API uint32_t zprusb_resetPrinter(uint16_t* resultCode);

/// @}

#ifdef __cplusplus
}
#endif

#endif
