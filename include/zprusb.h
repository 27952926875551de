/// @file zprusb.h
/// The public interface of the RQX5820 USB printer library.
///
/// A first print, with every check left out:
///
///     uint16_t code, page;
///     uint32_t size = 1800 * 1200 * 3;                /* width x height x 3 bytes of RGB, 300 dots per inch */
///     zprusb_open(&code);
///     zprusb_checkMediaInfo(0xF1, 15240, 10160, &code); /* 6 x 4 inch, in 1/100 mm */
///     zprusb_startpage(&page, &code);
///     zprusb_write(pixels, &size, &code);
///     zprusb_endpage(&code);
///     zprusb_close();
///
/// Conventions that hold for every function unless it says otherwise:
///
/// - The return value is 1 for success and 0 for failure.
/// - `resultCode` receives one of the codes of ::ZPRUSB_RESULT_CODES; it may be null. The codes that a
///   function can give are listed with it.
/// - All buffers belong to the caller; the library keeps no pointer after it has returned.
/// - Every call is synchronous and may come from any thread. Calls of one process run one after the other
///   (zprusb_copies() and zprusb_endpage() never wait for another call). Each thread works on the printer
///   object that it was bound to by zprusb_open(); while only one object exists, all threads share it.
/// - A function that talks to a printer first reserves it among all threads and processes of the machine and
///   waits at most 500 ms for that. Each request and each answer is then given at most 10 s.
/// - Functions marked *repeats* run up to 4 times while they fail, without a pause.
#ifndef ZPRUSB_H
#define ZPRUSB_H

#include <stdint.h>

#if defined(__GNUC__) && !defined(_WIN32)
#define ZPRUSB_API __attribute__((visibility("default")))
#else
#define ZPRUSB_API
#endif

/// Every result code: number, name, meaning, and what to do about it.
/// Use it with a macro of four parameters to make a switch or a table of one's own.
#define ZPRUSB_RESULT_CODES(X) \
    X(0, SUCCESS, "Success.", "Nothing is to be done.") \
    X(1000, OUT_OF_MEMORY, "There is not enough memory.", "Close other programs and try again.") \
    X(1002, NO_CONTROL_LIBRARY, "The control library is missing beside this library, or it is incomplete.", \
      "Put the printer's control library, or the simulator, into the folder of this library.") \
    X(1004, NO_PRINTER_FOUND, "No printer was found.", \
      "Connect the printer by USB, switch it on, and open again.") \
    X(1005, FILE_FAILED, "A firmware file cannot be opened, read or written.", \
      "Check that the file is there, is complete, and may be read.") \
    X(1006, BAD_ARGUMENT, "An argument is outside its allowed range, or the media size is not offered.", \
      "Compare the arguments with the ranges in the documentation and with the printer's media list.") \
    X(1008, NOT_SELECTABLE, "The printer that was asked for is not present.", \
      "List the printers and choose one of them.") \
    X(1500, PRINTER_BUSY, "Another thread or program is using the printer.", \
      "Wait until its page has ended and try again.") \
    X(1501, NO_OBJECT, "The calling thread has no printer object.", \
      "Call zprusb_open on this thread first, and make as many objects as there are threads.") \
    X(1502, STILL_IN_USE, "The printer objects cannot be released while a thread is still bound to one.", \
      "Call zprusb_close on every thread that called zprusb_open.") \
    X(2000, NO_PRINTER, "No printer is selected, or the selected printer is no longer connected.", \
      "Connect the printer, list the printers and select one.") \
    X(2100, CONDITION_2100, "The printer is not ready: condition 2100.", \
      "Wait until the printer has finished, or look at its display.") \
    X(2101, CONDITION_2101, "The printer reports condition 2101.", "Look at the printer's display.") \
    X(2103, CONDITION_2103, "The printer reports condition 2103.", "Look at the printer's display.") \
    X(2104, CONDITION_2104, "The printer reports condition 2104.", "Look at the printer's display.") \
    X(2105, CONDITION_2105, "The printer reports condition 2105.", "Look at the printer's display.") \
    X(2106, CONDITION_2106, "The printer reports condition 2106.", "Look at the printer's display.") \
    X(2107, CONDITION_2107, "The printer reports condition 2107.", "Look at the printer's display.") \
    X(2108, CONDITION_2108, "The printer reports condition 2108.", "Look at the printer's display.") \
    X(2109, CONDITION_2109, "The printer reports condition 2109.", "Look at the printer's display.") \
    X(2200, NOTICE_2200, "The printer gives notice 2200.", "Look at the printer's display.") \
    X(2201, NOTICE_2201, "The printer gives notice 2201.", "Look at the printer's display.") \
    X(2202, NOTICE_2202, "The printer gives notice 2202.", "Look at the printer's display.") \
    X(2209, NOTICE_2209, "The printer gives notice 2209.", "Look at the printer's display.") \
    X(2210, NOTICE_2210, "The printer gives notice 2210.", "Look at the printer's display.") \
    X(2211, NOTICE_2211, "The printer gives notice 2211.", "Look at the printer's display.") \
    X(2212, NOTICE_2212, "The printer gives notice 2212.", "Look at the printer's display.") \
    X(2305, DEVICE_ERROR_2305, "The printer reports a device error of group 6, details 5 to 9.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2306, DEVICE_ERROR_2306, "The printer reports a device error of group 6, details 2 to 4.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2307, DEVICE_ERROR_2307, "The printer reports a device error of group 5.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2309, DEVICE_ERROR_2309, "The printer reports a device error of group 6, detail 1 or 11.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2310, DEVICE_ERROR_2310, "The printer reports a device error of group 6, detail 16.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2500, DEVICE_ERROR_2500, "The printer reports a device error of group 1 to 4.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2504, UNEXPECTED, "The printer or the operating system reported something unexpected.", \
      "Try again; if it returns, close and open the library.") \
    X(2600, COMMUNICATION, "The communication with the printer failed.", \
      "Check the cable and that the printer is on; then close and open the library.") \
    X(2601, ANSWER_ERROR_1, "The printer refused the request with error 1.", "Close and open the library, and try again.") \
    X(2602, ANSWER_ERROR_2, "The printer refused the request with error 2.", "Close and open the library, and try again.") \
    X(2603, ANSWER_ERROR_3, "The printer refused the request with error 3.", "Close and open the library, and try again.") \
    X(2604, ANSWER_ERROR_4, "The printer refused the request with error 4.", "Close and open the library, and try again.") \
    X(2605, ANSWER_ERROR_5, "The printer refused the request with error 5.", "Close and open the library, and try again.") \
    X(3001, NOT_S_RECORDS, "The firmware file is not S-record text.", "Choose the right file.") \
    X(3002, BAD_CHECKSUM, "A checksum in the firmware file does not match.", "Get an undamaged copy of the file.") \
    X(3003, BAD_ADDRESS, "An address in the firmware file lies outside the permitted range.", "Choose the right file.") \
    X(3200, UPDATE_REFUSED, "The printer did not accept the start of the firmware update.", \
      "Check target, start and length, and that the printer is ready.") \
    X(8000, DIAGNOSIS_WITH_2106, "Self-diagnosis results came together with condition 2106.", \
      "Look at the printer's display and run the diagnosis again.")

#define ZPRUSB_ENUMERATOR(number, name, meaning, remedy) ZPRUSB_##name = (number),
/// The values of every `resultCode`.
enum zprusb_resultCode { ZPRUSB_RESULT_CODES(ZPRUSB_ENUMERATOR) ZPRUSB_RESULT_CODE_END };
#undef ZPRUSB_ENUMERATOR

/// Tags of zprusb_getPrinterInfo(): number, name, record size in bytes, content.
#define ZPRUSB_INFO_TAGS(X) \
    X(0, MEDIA, 151, "media sizes: a count byte, then 30 bytes for each of at most 5 sizes") \
    X(3, FIRMWARE, 267, "firmware: the byte 7, then 38 bytes for each of 7 components") \
    X(4, COUNTERS, 28, "seven 32-bit counters; counter n can be reset as number n, the first one can't") \
    X(7, DEVICE_ERROR, 2, "group and detail of the present device error, or two zero bytes") \
    X(16, STATUS_BYTES, 16, "bytes of the status answer; the first one is the last job number") \
    X(25, UNIQUE_STRING, 23, "the string that was stored in the printer to tell it from others") \
    X(26, MAINTENANCE, 18, "8 bytes of maintenance memory from address 0x20, then 10 bytes of maintenance data") \
    X(50, ERROR_LOG, 61, "the error log")

#define ZPRUSB_ENUMERATOR(tag, name, size, content) ZPRUSB_INFO_##name = (tag),
enum zprusb_infoTag { ZPRUSB_INFO_TAGS(ZPRUSB_ENUMERATOR) ZPRUSB_INFO_END };
#undef ZPRUSB_ENUMERATOR
#define ZPRUSB_ENUMERATOR(tag, name, size, content) ZPRUSB_INFO_##name##_SIZE = (size),
enum zprusb_infoSize { ZPRUSB_INFO_TAGS(ZPRUSB_ENUMERATOR) ZPRUSB_INFO_SIZE_END };
#undef ZPRUSB_ENUMERATOR

/// Tags of zprusb_setPrinterInfo(): number, name, length of the data in bytes (0: variable), content.
#define ZPRUSB_SETTING_TAGS(X) \
    X(20, OPTION20, 1, "print option 20; 1 after every selection of a printer by number") \
    X(21, OPTION21, 2, "print option 21, little-endian; 200 after opening") \
    X(22, OPTION22, 2, "print option 22, little-endian; 200 after opening") \
    X(23, BUTTON, 1, "operation button, 1 or 2") \
    X(24, PARAMETER, 4, "printer parameter 1, little-endian") \
    X(25, UNIQUE_STRING, 0, "the printer's unique string, 1 to 23 bytes") \
    X(26, UNIQUE_STRING_NOT_8, 0, "as 25, but 8 bytes are refused; of a longer length the low 8 bits count")

#define ZPRUSB_ENUMERATOR(tag, name, size, content) ZPRUSB_SET_##name = (tag),
enum zprusb_settingTag { ZPRUSB_SETTING_TAGS(ZPRUSB_ENUMERATOR) ZPRUSB_SET_END };
#undef ZPRUSB_ENUMERATOR

enum zprusb_size {
    ZPRUSB_MAX_OBJECTS = 100,   ///< objects that zprusb_MakeObject() makes at most
    ZPRUSB_MAX_PRINTERS = 128,  ///< bytes of the list of zprusb_listupPrinter()
    ZPRUSB_LABEL_SIZE = 23,     ///< bytes of one printer label, not terminated
    ZPRUSB_NO_PRINTER_NUMBER = 255,  ///< no printer; also asks zprusb_selectPrinter() for the present one
    ZPRUSB_LIST_END = 0xFF,     ///< fills and ends lists of printer numbers
    ZPRUSB_MAX_COPIES = 999,
    ZPRUSB_MAX_SECTION = 5,     ///< sections of a long page
    ZPRUSB_MEDIA_ENTRY_SIZE = 30,
    ZPRUSB_FIRMWARE_ENTRY_SIZE = 38
};

#ifdef __cplusplus
extern "C" {
#endif

/// Makes and opens printer objects, so that several threads can each work with a printer of their own.
/// @param objectCount 1 to 100; not below the present count (the count only grows, until it is released).
/// @return 1 when all objects are open; 0 when the count is refused or an object cannot be opened.
ZPRUSB_API uint32_t zprusb_MakeObject(uint16_t objectCount);

/// Releases all printer objects and sets the count back to 1. Takes at least 50 ms.
/// @param resultCode 0; 1502 when a thread is still bound (nothing changes).
ZPRUSB_API uint32_t zprusb_ReleaseObject(uint16_t* resultCode);

/// Tells how many threads are bound and how many objects there are. Always returns 1.
/// @param boundThreads receives the number of bound threads; may be null.
/// @param objectCount receives the number of objects; may be null.
ZPRUSB_API uint32_t zprusb_attachObjectCount(uint16_t* boundThreads, uint16_t* objectCount);

/// Opens the library: loads the control library, finds the printers, binds the calling thread to the lowest
/// free object and selects printer 0. Opening again on the same thread changes nothing. Waits without limit
/// for a printer that another process is using when the printers are searched, which is at the first opening.
/// @param resultCode 0; 1000; 1002; 1004; 1501 when all objects are bound to other threads.
ZPRUSB_API uint32_t zprusb_open(uint16_t* resultCode);

/// Unbinds the calling thread. When no thread is bound any more, releases all objects and ends the library's
/// background thread, for which it waits at most 5 s.
ZPRUSB_API void zprusb_close(void);

/// Searches the printers and lists their numbers. Waits without limit for a newly connected printer that
/// another process is using. If the first object has a printer selected, the calling thread selects that printer
/// anew, as by zprusb_selectPrinter(), so a thread with an object of its own has to select its printer again.
/// @param list 128 bytes: the numbers found, in the order found; the rest is filled with 0xFF.
/// @return the number of printers found; 0 before zprusb_open().
ZPRUSB_API uint32_t zprusb_listupPrinter(uint8_t* list);

/// Searches the printers and lists their labels.
/// @param labels 2944 bytes: 23 bytes for each printer found, in the order found; the rest is zero.
/// @return the number of printers found; 0 also when there are 128.
ZPRUSB_API uint32_t zprusb_listupPrinterLbl(char* labels);

/// Selects the printer that the calling thread works with, and sets print option 20 back to 1.
/// @param printerNumber a number from zprusb_listupPrinter(); 255 asks for the present selection.
/// @param resultCode 0; 1008 when that printer is not present or none is selected; 1501.
/// @return the number of the selected printer, or 255.
ZPRUSB_API uint32_t zprusb_selectPrinter(uint8_t printerNumber, uint16_t* resultCode);

/// Selects the printer with the given label.
/// @param label 23 bytes, not terminated; null asks for the present selection.
/// @param resultCode 0; 1008 when no present printer has it; 1501; 2000 when null is given and no printer is
///        selected.
/// @return the object's selected label (23 bytes, not terminated, owned by the library, valid until the
///         objects are released); null when there is no object, or none is selected and null was given.
ZPRUSB_API char* zprusb_selectPrinterLbl(const char* label, uint16_t* resultCode);

/// Reads information from the printer. Repeats.
/// @param tag one of ::zprusb_infoTag; the record sizes are in ::zprusb_infoSize.
/// @param buffer receives the record; null asks for its size only.
/// @param length on entry the capacity of the buffer in bytes; on return the bytes copied, or the size of the
///        record for a null buffer. Must not be null. A smaller buffer receives the first part of the record.
/// @return 1; 0 on failure: the length is then 0, or untouched when the printer cannot be reserved or tags 4
///         and 26 cannot be read.
ZPRUSB_API uint32_t zprusb_getPrinterInfo(uint16_t tag, uint8_t* buffer, uint32_t* length);

/// Changes a setting of the object or of the printer. Repeats.
/// @param tag one of ::zprusb_settingTag.
/// @param data the value, with at least the bytes that the tag reads.
/// @param length number of bytes of the data; read by tags 25 and 26 only, never changed.
/// @param resultCode 0; 1006 another tag, a value or length outside its range, or a null pointer that the tag
///        needs; 1500; 1501; 2000; 2504; 2600; the printer's 2100 to 2310 and 2500.
ZPRUSB_API uint32_t zprusb_setPrinterInfo(uint16_t tag, const uint8_t* data, const uint32_t* length,
                                          uint16_t* resultCode);

/// Asks the printer for its status. Repeats.
/// @param resultCode 0 when it is ready; 1500; 1501; 2000; 2504; 2600; the printer's 2100 to 2310 and 2500.
ZPRUSB_API uint32_t zprusb_status(uint16_t* resultCode);

/// Asks several printers for their status, one after the other; each that is busy costs 500 ms.
/// @param printerList printer numbers, ended by 0xFF; at most 128 are read.
/// @param results one element for each number of the list: the codes of zprusb_status().
/// @return 1 when at least one printer is ready.
ZPRUSB_API uint32_t zprusb_statusAll(const uint8_t* printerList, uint16_t* results);

/// Chooses the media size of the following pages; the printer's list must offer it. Repeats.
/// @param mediaCode code of the media list. 0xF0 to 0xFE name exact sizes, all others a variable length.
/// @param width width as in the media list.
/// @param length length as in the media list, or from 7112 to the longest length for a variable one; where the
///        list says 0 for the longest length, that is 25120 with the codes 0xE0 to 0xEF, and none with others.
/// @param resultCode 0; 1006 when the size is not offered (the former choice stays); 1500; 1501; 2000; 2504;
///        2600 to 2605; the printer's 2100 to 2310 and 2500.
ZPRUSB_API uint32_t zprusb_checkMediaInfo(uint8_t mediaCode, uint32_t width, uint32_t length,
                                          uint16_t* resultCode);

/// Sets one of the printer's counters to zero. Repeats.
/// @param counterNumber 1 to 6.
/// @param resultCode 0; 1006; 1500; 1501; 2000; 2504; 2600; the printer's 2100 to 2310 and 2500.
ZPRUSB_API uint32_t zprusb_resetCounter(uint8_t counterNumber, uint16_t* resultCode);

/// Sets the number of copies of the next page. Sends nothing and waits for nothing.
/// @param copies 1 to 999; 1 after opening and after each zprusb_endpage().
/// @param resultCode 0; 1006; 1501.
ZPRUSB_API uint32_t zprusb_copies(uint16_t copies, uint16_t* resultCode);

/// Starts a page and reserves the printer for the calling thread until zprusb_endpage(). Repeats.
/// @param pageId receives printer number x 256 + job number, or 0 on failure before one was given; may be null.
/// @param resultCode 0; 1006; 1500; 1501; 2000; 2504; 2600; the printer's 2100 to 2310 and 2500.
ZPRUSB_API uint32_t zprusb_startpage(uint16_t* pageId, uint16_t* resultCode);

/// Starts one section of a long page.
/// @param pageId as for zprusb_startpage().
/// @param sectionIndex 0: the whole print, as zprusb_startpage(); 1 to 5: a section, which does not reserve
///        the printer.
/// @param resultCode as for zprusb_startpage(); 1006 also for a section above 5.
ZPRUSB_API uint32_t zprusb_startpagelong(uint16_t* pageId, uint8_t sectionIndex, uint16_t* resultCode);

/// Sends image data of the started page: 8-bit RGB, row by row, in as many calls as the caller likes. Blocks
/// for as long as the printer does not take the data; there is no time-out.
/// @param data the bytes.
/// @param length number of bytes; not changed. With 0, nothing is sent, 0 is returned and no code is written.
/// @param resultCode 0; 1006; 1501; 2600 (part of the data may have been sent).
ZPRUSB_API uint32_t zprusb_write(const uint8_t* data, const uint32_t* length, uint16_t* resultCode);

/// Ends the page: gives the printer free and sets the number of copies back to 1. Must come from the thread
/// that started the page. Sends nothing and waits for nothing.
/// @param resultCode 0; 1501.
ZPRUSB_API uint32_t zprusb_endpage(uint16_t* resultCode);

/// Makes the printer's LED flash.
/// @param resultCode 0; 1500; 1501; 2000; 2504; 2600.
ZPRUSB_API uint32_t zprusb_blinkLED(uint16_t* resultCode);

/// Resets the printer. Does not wait until it has started again.
/// @param resultCode 0; 1500; 1501; 2000; 2504; 2600.
ZPRUSB_API uint32_t zprusb_resetPrinter(uint16_t* resultCode);

#ifdef __cplusplus
}
#endif

#endif
