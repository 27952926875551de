/// @file zprusb.h
/// The public interface of the RQX5820 USB printer library, and its manual.
///
/// @section first_print A first print
///
/// With every check left out:
///
///     uint16_t code, page;
///     uint32_t size = 1800 * 1200 * 3;                   // width x height x 3 bytes of RGB, as the
///                                                        // simulator takes them; see zprusb_write()
///     zprusb_open(&code);
///     zprusb_checkMediaInfo(0xF1, 15240, 10160, &code);  // 6 x 4 inch, in 1/100 mm
///     zprusb_startpage(&page, &code);
///     zprusb_write(pixels, &size, &code);
///     zprusb_endpage(&code);
///     zprusb_close();
///
/// @section conventions Conventions
///
/// They hold for every function unless it says otherwise.
///
/// - The return value is 1 for success and 0 for failure.
/// - `resultCode` belongs to the caller and may be null. It receives one of ::ZPRUSB_RESULT_CODES, or stays
///   untouched where a function says so. A return value of 1 always comes with code 0. The codes listed with a
///   function are all that it can give; zprusb_text.h turns them into words.
/// - *The printer's codes* in these lists come from the printer's answer: 2100, 2101, 2103 to 2109, 2200 to
///   2202, 2209 to 2212, 2305, 2306, 2307, 2309, 2310, 2500, and 2504 for a number that has no code. A notice
///   (2200 to 2212) reaches the caller only when the printer refused the request with it; the status of a
///   printer that gives a notice and is otherwise ready is 0.
/// - Buffers belong to the caller; the library keeps no pointer after it has returned. A pointer must not be
///   null unless its description says what null does.
/// - Numbers of several bytes in records and settings are little-endian. Widths and lengths of media are in
///   1/100 mm.
///
/// @section threads Threads and printer objects
///
/// Every call is synchronous and may come from any thread. A thread works on a *printer object*: a selected
/// printer, the size and options of the next page, and the page that is open. There is one object unless
/// zprusb_MakeObject() makes more, at most 100.
///
/// - zprusb_open(), zprusb_selectPrinter() and zprusb_selectPrinterLbl() bind the calling thread to the lowest
///   object that no thread is bound to, unless it is bound already. zprusb_listupPrinter() and
///   zprusb_listupPrinterLbl() do so as well when the first object has a printer selected.
/// - With one object, all threads share it, bound or not.
/// - With several objects, each bound thread has its own, and a thread that is not bound gets 1501.
/// - A thread stays bound until it calls zprusb_close(), even beyond its end: whatever thread gets its number
///   then is bound in its place.
/// - Before the first object is made, by zprusb_open() or zprusb_MakeObject(), functions that need one give
///   1501.
///
/// The calls of a process run one after the other, under one lock that each of them holds to its end, so a call
/// first waits for its turn. zprusb_copies() and zprusb_endpage() don't take that lock and wait for nothing. A
/// background thread, started by zprusb_open(), notices unplugged printers; it takes the lock while it looks at
/// them.
///
/// On Linux, a thread that is cancelled in a call goes on until the call has returned, and the child of a fork
/// finds the library as if it had never been opened; nothing that it does there concerns the parent's printers.
///
/// @section reservations Reservations
///
/// A function that talks to a printer first reserves it for the calling thread, among all threads and processes
/// of the machine, and releases it before it returns. A successful start of a page keeps the reservation until
/// zprusb_endpage(), which has to come from the same thread; meanwhile that thread may call everything else. A
/// thread or process that ends without releasing a printer does not keep it: the next attempt to reserve it may
/// fail with 1500, the one after that is in order.
///
/// @section limits Time limits
///
/// - A reservation is waited for 0.5 s at most; then the code is 1500.
/// - An *exchange* with the printer is one request and its answer. Either may take 10 s; one that takes longer
///   is ended, within about another second, and the exchange fails with 2600. So an exchange takes at most 20
///   s, or about 21 s when it fails.
/// - Functions marked *repeats* run up to 4 times while they fail, whatever the code, without a pause. The code
///   is that of the last attempt.
/// - The limit given with a function counts from its turn among the calls of the process, and leaves out what
///   the control library takes for finding, opening and closing devices. The wait for the turn has no limit of
///   its own, since zprusb_write() has none. Nor has the search for printers in zprusb_open(),
///   zprusb_MakeObject(), zprusb_listupPrinter() and zprusb_listupPrinterLbl(), but other calls go on while it
///   waits.
#ifndef ZPRUSB_H
#define ZPRUSB_H

#include <stdint.h>

// The build takes the library's version from here.
/// First number of the version of the library that this header belongs to.
#define ZPRUSB_VERSION_MAJOR 0
/// Second number of the version.
#define ZPRUSB_VERSION_MINOR 1
/// Third number of the version.
#define ZPRUSB_VERSION_PATCH 0

#if defined(__GNUC__) && !defined(_WIN32)
#define ZPRUSB_API __attribute__((visibility("default")))
#else
#define ZPRUSB_API
#endif

/// Every result code. Use it with a macro of five parameters to make a switch or a table of your own:
/// X(number, name, meaning, likely cause, remedy), the last three as sentences.
/// @hideinitializer
// clang-format off
#define ZPRUSB_RESULT_CODES(X) \
    X(0, SUCCESS, "Success.", \
      "The call did what it was asked for.", \
      "You need do nothing.") \
    X(1000, OUT_OF_MEMORY, "There is not enough memory.", \
      "The system refused memory for a printer object or for a firmware image.", \
      "Close other programs and try again.") \
    X(1002, NO_CONTROL_LIBRARY, "The control library is missing beside this library, or it is incomplete.", \
      "The control library was not installed, lies in another folder, is of another architecture or " \
      "version, or lacks a library that it needs itself.", \
      "Put the printer's control library, or the simulator, into the folder of this library.") \
    X(1004, NO_PRINTER_FOUND, "No printer was found.", \
      "No printer of this type is connected and switched on, or the system does not let this program open " \
      "it.", \
      "Connect the printer by USB, switch it on, and open again.") \
    X(1005, FILE_FAILED, "A firmware file cannot be opened, read or written.", \
      "The path is wrong, the file may not be read, it ends within a record, or the disk is full.", \
      "Check that the file is there, is complete, and may be read.") \
    X(1006, BAD_ARGUMENT, "An argument is outside its allowed range, or the media size is not offered.", \
      "The program passed a wrong value, length or null pointer, or other media are loaded than it expects.", \
      "Compare the arguments with the ranges in the documentation and with the printer's media list.") \
    X(1008, NOT_SELECTABLE, "The printer that was asked for is not present.", \
      "The number or label does not belong to a printer that is open, the printer was unplugged, or none is " \
      "selected.", \
      "List the printers and choose one of them.") \
    X(1500, PRINTER_BUSY, "Another thread or program is using the printer.", \
      "A page is open on it, another call is talking to it, or its last user ended without releasing it.", \
      "Wait until its page has ended and try again.") \
    X(1501, NO_OBJECT, "The calling thread has no printer object.", \
      "The library is not open, the thread has not called zprusb_open while there are several objects, or " \
      "all objects belong to other threads.", \
      "Call zprusb_open on this thread first, and make as many objects as there are threads.") \
    X(1502, STILL_IN_USE, "The printer objects cannot be released while a thread is still bound to one.", \
      "A thread, perhaps the calling one or one that has ended, did not call zprusb_close.", \
      "Call zprusb_close on every thread that called zprusb_open.") \
    X(2000, NO_PRINTER, "No printer is selected, or the selected printer is no longer connected.", \
      "The printer was unplugged or switched off, or the selection failed.", \
      "Connect the printer, list the printers and select one.") \
    X(2100, CONDITION_2100, "The printer is not ready: condition 2100.", \
      "The printer answered with number 0x21, or its status flags say that it cannot take a page now; its " \
      "display may tell why.", \
      "Wait until the printer has finished, or look at its display.") \
    X(2101, CONDITION_2101, "The printer reports condition 2101.", \
      "The printer answered with error number 0x31; what that stands for is not known here, but its display " \
      "tells.", \
      "Do what the printer's display asks for, and try again.") \
    X(2103, CONDITION_2103, "The printer reports condition 2103.", \
      "The printer answered with error number 0x33; what that stands for is not known here, but its display " \
      "tells.", \
      "Do what the printer's display asks for, and try again.") \
    X(2104, CONDITION_2104, "The printer reports condition 2104.", \
      "The printer answered with error number 0x34; what that stands for is not known here, but its display " \
      "tells.", \
      "Do what the printer's display asks for, and try again.") \
    X(2105, CONDITION_2105, "The printer reports condition 2105.", \
      "The printer answered with error number 0x35; what that stands for is not known here, but its display " \
      "tells.", \
      "Do what the printer's display asks for, and try again.") \
    X(2106, CONDITION_2106, "The printer reports condition 2106.", \
      "The printer answered with error number 0x36; what that stands for is not known here, but its display " \
      "tells.", \
      "Do what the printer's display asks for, and try again.") \
    X(2107, CONDITION_2107, "The printer reports condition 2107.", \
      "The printer answered with error number 0x37; what that stands for is not known here, but its display " \
      "tells.", \
      "Do what the printer's display asks for, and try again.") \
    X(2108, CONDITION_2108, "The printer reports condition 2108.", \
      "The printer answered with error number 0x38; what that stands for is not known here, but its display " \
      "tells.", \
      "Do what the printer's display asks for, and try again.") \
    X(2109, CONDITION_2109, "The printer reports condition 2109.", \
      "The printer answered with error number 0x39; what that stands for is not known here, but its display " \
      "tells.", \
      "Do what the printer's display asks for, and try again.") \
    X(2200, NOTICE_2200, "The printer gives notice 2200.", \
      "The printer answered with notice number 0x61; what that stands for is not known here, but its " \
      "display tells.", \
      "Look at the printer's display, and try again.") \
    X(2201, NOTICE_2201, "The printer gives notice 2201.", \
      "The printer answered with notice number 0x62; what that stands for is not known here, but its " \
      "display tells.", \
      "Look at the printer's display, and try again.") \
    X(2202, NOTICE_2202, "The printer gives notice 2202.", \
      "The printer answered with notice number 0x63; what that stands for is not known here, but its " \
      "display tells.", \
      "Look at the printer's display, and try again.") \
    X(2209, NOTICE_2209, "The printer gives notice 2209.", \
      "The printer answered with notice number 0x6A; what that stands for is not known here, but its " \
      "display tells.", \
      "Look at the printer's display, and try again.") \
    X(2210, NOTICE_2210, "The printer gives notice 2210.", \
      "The printer answered with notice number 0x6B; what that stands for is not known here, but its " \
      "display tells.", \
      "Look at the printer's display, and try again.") \
    X(2211, NOTICE_2211, "The printer gives notice 2211.", \
      "The printer answered with notice number 0x6C; what that stands for is not known here, but its " \
      "display tells.", \
      "Look at the printer's display, and try again.") \
    X(2212, NOTICE_2212, "The printer gives notice 2212.", \
      "The printer answered with notice number 0x6D; what that stands for is not known here, but its " \
      "display tells.", \
      "Look at the printer's display, and try again.") \
    X(2305, DEVICE_ERROR_2305, "The printer reports a device error of group 6, details 5 to 9.", \
      "A fault inside the printer; information tag 7 gives its group and detail.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2306, DEVICE_ERROR_2306, "The printer reports a device error of group 6, details 2 to 4.", \
      "A fault inside the printer; information tag 7 gives its group and detail.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2307, DEVICE_ERROR_2307, "The printer reports a device error of group 5.", \
      "A fault inside the printer; information tag 7 gives its group and detail.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2309, DEVICE_ERROR_2309, "The printer reports a device error of group 6, detail 1 or 11.", \
      "A fault inside the printer; information tag 7 gives its group and detail.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2310, DEVICE_ERROR_2310, "The printer reports a device error of group 6, detail 16.", \
      "A fault inside the printer; information tag 7 gives its group and detail.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2500, DEVICE_ERROR_2500, "The printer reports a device error of group 1 to 4.", \
      "A fault inside the printer; information tag 7 gives its group and detail.", \
      "Switch the printer off and on; if the error returns, call service.") \
    X(2504, UNEXPECTED, "The printer or the operating system reported something unexpected.", \
      "The printer gave a number that this library does not know, or the system did not let it be reserved: " \
      "on Linux its lock file may be another user's and without rights for this one, the file system of the " \
      "lock files, usually /dev/shm, may be full or read-only, or the process may have no descriptors left.", \
      "Try again; if it returns, look at the lock files and at the number of open files of the process, then " \
      "close and open the library.") \
    X(2600, COMMUNICATION, "The communication with the printer failed.", \
      "The printer was unplugged, switched off or reset, did not take a request or answer within 10 s, " \
      "refused a request, or sent an answer of the wrong length.", \
      "Check the cable and that the printer is on; then close and open the library.") \
    X(2601, ANSWER_ERROR_1, "The printer refused the request with error 1.", \
      "Known to the printer only: it did not accept this request in its present state.", \
      "Close and open the library, and try again.") \
    X(2602, ANSWER_ERROR_2, "The printer refused the request with error 2.", \
      "Known to the printer only: it did not accept this request in its present state.", \
      "Close and open the library, and try again.") \
    X(2603, ANSWER_ERROR_3, "The printer refused the request with error 3.", \
      "Known to the printer only: it did not accept this request in its present state.", \
      "Close and open the library, and try again.") \
    X(2604, ANSWER_ERROR_4, "The printer refused the request with error 4.", \
      "Known to the printer only: it did not accept this request in its present state.", \
      "Close and open the library, and try again.") \
    X(2605, ANSWER_ERROR_5, "The printer refused the request with error 5.", \
      "Known to the printer only: it did not accept this request in its present state.", \
      "Close and open the library, and try again.") \
    X(3001, NOT_S_RECORDS, "The firmware file is not S-record text.", \
      "It is another file, is damaged, or contains records that the library does not take.", \
      "Choose the right file.") \
    X(3002, BAD_CHECKSUM, "A checksum in the firmware file does not match.", \
      "The file was damaged or edited.", \
      "Get an undamaged copy of the file.") \
    X(3003, BAD_ADDRESS, "An address in the firmware file lies outside the permitted range.", \
      "The file belongs to another product or is damaged, or it has no data at all.", \
      "Choose the right file.") \
    X(3200, UPDATE_REFUSED, "The printer did not accept the start of the firmware update.", \
      "The update request could not be sent, was refused, or was not answered.", \
      "Check target, start and length, and that the printer is ready.") \
    X(8000, DIAGNOSIS_WITH_2106, "Self-diagnosis results came together with condition 2106.", \
      "The printer was in condition 2106 when it was asked for the results.", \
      "Look at the printer's display and run the diagnosis again.")
// clang-format on

#define ZPRUSB_ENUMERATOR(number, name, meaning, cause, remedy) ZPRUSB_##name = (number),
/// The values of every `resultCode`; docs/result-codes.md shows them as a table. 1005, 3001 to 3003, 3200 and
/// 8000 are those of service programs; no function of this header gives them.
enum zprusb_resultCode {
    ZPRUSB_RESULT_CODES(ZPRUSB_ENUMERATOR)  //
    ZPRUSB_RESULT_CODE_END                  ///< No code: it ends the list.
};
#undef ZPRUSB_ENUMERATOR

/// Tags of zprusb_getPrinterInfo(): X(tag, name, size of the record in bytes, content).
/// @hideinitializer
// clang-format off
#define ZPRUSB_INFO_TAGS(X) \
    X(0, MEDIA, 151, "media sizes: a count byte, then 30 bytes for each of at most 5 sizes") \
    X(3, FIRMWARE, 267, "firmware: the byte 7, then 38 bytes for each of 7 components") \
    X(4, COUNTERS, 28, "seven 32-bit counters; counter n can be reset as number n, the first one can't") \
    X(7, DEVICE_ERROR, 2, "group and detail of the present device error, or two zero bytes") \
    X(16, STATUS_BYTES, 16, "bytes of the status answer; the first one is the last job number") \
    X(25, UNIQUE_STRING, 23, "the string that was stored in the printer to tell it from others") \
    X(26, MAINTENANCE, 18, \
      "8 bytes of maintenance memory from address 0x20, then 10 bytes of maintenance data") \
    X(50, ERROR_LOG, 61, "the error log")
// clang-format on

#define ZPRUSB_ENUMERATOR(tag, name, size, content) ZPRUSB_INFO_##name = (tag),
/// What zprusb_getPrinterInfo() can read. All numbers in the records are little-endian.
///
/// - The media list: a count byte, then entries of 30 bytes. In an entry: 0 media code; 1 to 4 width; 5 to 8
///   length; 9 and 10 the printer's own; 11 to 14 longest length; 15 to 18 width of a section; 19 to 28 lengths
///   of five sections, two bytes each; 29 zero. The record has room for 5 entries; the count may be up to 8.
/// - Firmware: the byte 7, then entries of 38 bytes for the components 1 to 7: fields of 8, 16 and 10
///   characters, two single bytes, and a number of two bytes. Their meaning is the printer's.
/// - Counters: seven numbers of four bytes.
/// - The device error: its group and its detail; zeros when the printer's status is not a device error.
/// - Status bytes: 0 the printer's last job number; 1 to 7 the printer's own; 8 the first flag, with which no
///   page can be started unless it is 0; 9 to 14 the printer's own; 15 the second flag. With both flags set,
///   the printer is not ready (2100).
/// - The unique string, the maintenance record and the error log are handed on as the printer sends them; what
///   it leaves out is zero.
enum zprusb_infoTag {
    ZPRUSB_INFO_TAGS(ZPRUSB_ENUMERATOR)  //
    ZPRUSB_INFO_END                      ///< No tag: it ends the list.
};
#undef ZPRUSB_ENUMERATOR
#define ZPRUSB_ENUMERATOR(tag, name, size, content) ZPRUSB_INFO_##name##_SIZE = (size),
/// Sizes of the records of zprusb_getPrinterInfo(), in bytes.
enum zprusb_infoSize {
    ZPRUSB_INFO_TAGS(ZPRUSB_ENUMERATOR)  //
    ZPRUSB_INFO_SIZE_END                 ///< No size: it ends the list.
};
#undef ZPRUSB_ENUMERATOR

/// Tags of zprusb_setPrinterInfo(): X(tag, name, length of the data in bytes (0: variable), content).
/// @hideinitializer
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
/// What zprusb_setPrinterInfo() can change.
enum zprusb_settingTag {
    ZPRUSB_SETTING_TAGS(ZPRUSB_ENUMERATOR)  //
    ZPRUSB_SET_END                          ///< No tag: it ends the list.
};
#undef ZPRUSB_ENUMERATOR

/// How zprusb_checkMediaInfo() reads the codes and lengths of the media list.
enum zprusb_mediaRule {
    ZPRUSB_FIRST_EXACT_CODE = 0xF0,          ///< Codes from here to the next one name exact sizes,
    ZPRUSB_LAST_EXACT_CODE = 0xFE,           ///< all others a variable length.
    ZPRUSB_FIRST_DEFAULTED_CODE = 0xE0,      ///< Codes from here to the next one have a default
    ZPRUSB_LAST_DEFAULTED_CODE = 0xEF,       ///< where the list says 0 for the longest length.
    ZPRUSB_SHORTEST_VARIABLE_LENGTH = 7112,  ///< The shortest variable length, in 1/100 mm.
    ZPRUSB_DEFAULT_LONGEST_LENGTH = 25120    ///< The default of the longest length, in 1/100 mm.
};

/// Sizes and limits.
enum zprusb_size {
    ZPRUSB_DOTS_PER_INCH = 300,      ///< Of a page, in both directions.
    ZPRUSB_MAX_OBJECTS = 100,        ///< Objects that zprusb_MakeObject() makes at most.
    ZPRUSB_MAX_PRINTERS = 128,       ///< Bytes of the list of zprusb_listupPrinter().
    ZPRUSB_LABEL_SIZE = 23,          ///< Bytes of one printer label, not terminated.
    ZPRUSB_NO_PRINTER_NUMBER = 255,  ///< No printer; also asks zprusb_selectPrinter() for the present one.
    ZPRUSB_LIST_END = 0xFF,          ///< Fills and ends lists of printer numbers.
    ZPRUSB_MAX_COPIES = 999,         ///< Copies of one page.
    ZPRUSB_MAX_SECTION = 5,          ///< Sections of a long page.
    ZPRUSB_MEDIA_ENTRY_SIZE = 30,    ///< Bytes of an entry of the media list.
    ZPRUSB_FIRMWARE_ENTRY_SIZE = 38  ///< Bytes of the entry of a firmware component.
};

#ifdef __cplusplus
extern "C" {
#endif

/// Makes and opens printer objects, so that several threads can each work with a printer of their own. Binds no
/// thread: each of them calls zprusb_open() afterwards. An object that could not be opened stays; zprusb_open()
/// tries it again and tells why it fails.
/// @param objectCount how many there shall be: 1 to 100, and not below the present number, which only grows
///        until zprusb_ReleaseObject().
/// @return 1 when every object that was missing has been made and opened; 0 when the number is refused (nothing
///         has changed), or an object cannot be made or opened (the others stay). There is no code.
/// @par Threads and time
/// Any thread. When it opens the first object of the process, it searches the printers, and waits without limit
/// for one that another process is using; otherwise it waits for its turn only.
ZPRUSB_API uint32_t zprusb_MakeObject(uint16_t objectCount);

/// Releases all printer objects, closes the printers and sets the number of objects back to 1. Reservations of
/// the calling thread end. The background thread goes on.
/// @param resultCode receives the code; may be null.
/// @return 1; 0 when a thread is still bound, even the calling one: then nothing has changed.
/// @par Codes
/// 0; 1502 a thread is bound.
/// @par Threads and time
/// Any thread. 50 ms.
ZPRUSB_API uint32_t zprusb_ReleaseObject(uint16_t* resultCode);

/// Tells how many threads are bound and how many objects there are.
/// @param boundThreads receives the number of bound threads, 0 to 100; may be null.
/// @param objectCount receives the number of objects, 1 to 100, whether or not they are made yet; may be null.
/// @return always 1.
/// @par Threads and time
/// Any thread. It waits for its turn only.
ZPRUSB_API uint32_t zprusb_attachObjectCount(uint16_t* boundThreads, uint16_t* objectCount);

/// Opens the library: makes the objects that are missing, loads the control library, searches the printers if
/// no search has found any yet, selects printer 0 for each new object, binds the calling thread and starts the
/// background thread. On a thread that is bound already, it only makes up for what is missing, which is nothing
/// as a rule. When an object cannot be opened, all are released again, unless a thread is bound.
/// @param resultCode receives the code; may be null.
/// @return 1 when all objects are open and the calling thread has one.
/// @par Codes
/// 0; 1000; 1002; 1004; 1501 there are several objects and all are bound to other threads; the objects stay
/// open.
/// @par Threads, reservations and time
/// Any thread. The search reserves each newly found printer for a moment, and waits without limit for one that
/// another process is using. Without a search it waits for its turn only; a failure takes another 50 ms.
ZPRUSB_API uint32_t zprusb_open(uint16_t* resultCode);

/// Unbinds the calling thread. When no thread is bound any more, releases all objects as zprusb_ReleaseObject()
/// does and ends the background thread: threads that go on need zprusb_open() again, and there is one object
/// again.
/// @par Threads and time
/// Any thread; called by one that is not bound, it only ends the library if no other thread is bound. 60 ms and
/// what the background thread takes to end, a fifth of a second as a rule and 5 s at most, when no thread
/// remains bound; otherwise it waits for its turn only.
ZPRUSB_API void zprusb_close(void);

/// Searches the printers and lists their numbers. If the first object has a printer selected, the calling
/// thread then selects that printer, as by `zprusb_selectPrinter(number, NULL)`, with all that this does: it is
/// bound if it was not, and its print option 20 is 1 again. So a thread with an object of its own has to select
/// its printer again.
///
/// A search looks at no more device numbers than the first one has opened devices. A printer that comes in
/// addition is found for certain only after zprusb_close() on all threads and a new zprusb_open().
/// @param list room for 128 bytes. Receives the numbers of the printers, 0 to 127, in the order found; the rest
///        is filled with 0xFF. Null: the call does nothing and returns 0.
/// @return the number of printers found; 0 before the first object is made, with the list filled all the same.
/// @par Threads, reservations and time
/// Any thread; it works on the first object, whichever thread is bound to that. The search reserves each newly
/// found printer for a moment, and waits without limit for one that another process is using.
ZPRUSB_API uint32_t zprusb_listupPrinter(uint8_t* list);

/// Searches the printers, as zprusb_listupPrinter() does, and lists their labels. The library does not read
/// labels from printers: all of them are 23 zero bytes.
/// @param labels room for 2944 bytes. Receives 23 bytes for each printer, not terminated, in the order found;
///        the rest is zero. Null: the call does nothing and returns 0.
/// @return the number of printers found; 0 also when there are 128, and before the first object is made.
/// @par Threads, reservations and time
/// As zprusb_listupPrinter().
ZPRUSB_API uint32_t zprusb_listupPrinterLbl(char* labels);

/// Selects the printer that the calling thread's object works with, and sets print option 20 back to 1. Binds
/// the calling thread, even when the result is 1501 because no object is made yet.
/// @param printerNumber a number from zprusb_listupPrinter(), 0 to 127; 255 asks for the present selection, and
///        changes nothing.
/// @param resultCode receives the code; may be null.
/// @return the number of the selected printer; 255 on failure: the selection is as before.
/// @par Codes
/// 0; 1008 no printer of that number is open, or 255 was given and none is selected; 1501.
/// @par Threads, reservations and time
/// Any thread. It reserves nothing and waits for its turn only.
ZPRUSB_API uint32_t zprusb_selectPrinter(uint8_t printerNumber, uint16_t* resultCode);

/// Selects the first printer that has the given label. As all labels are 23 zero bytes, that is the printer
/// with number 0 or none. Print option 20 stays. Binds the calling thread as zprusb_selectPrinter() does.
/// @param label 23 bytes, not terminated; null asks for the present selection, and changes nothing.
/// @param resultCode receives the code; may be null.
/// @return the label that was last selected for the object, 23 bytes, not terminated, also with 1008. They
///         belong to the library, change with the next selection by label, and are valid until the objects are
///         released. Null with 1501 and 2000.
/// @par Codes
/// 0; 1008 no open printer has that label, and the selection is as before; 1501; 2000 null was given and no
/// printer is selected, or it is gone.
/// @par Threads, reservations and time
/// Any thread. It reserves nothing and waits for its turn only.
ZPRUSB_API char* zprusb_selectPrinterLbl(const char* label, uint16_t* resultCode);

/// Reads information from the printer, after it has asked for its status: a printer that reports an error is
/// read all the same. Repeats. There is no code; zprusb_status() tells why it failed.
/// @param tag one of ::zprusb_infoTag.
/// @param buffer receives the record, of the size in ::zprusb_infoSize; null asks for that size only.
/// @param length on entry the capacity of the buffer in bytes. On return the number of bytes copied, or the
///        size of the record for a null buffer. A smaller buffer receives the first part of the record, which
///        is no failure. Null: the call fails.
/// @return 1; 0 when the thread has no object, the printer cannot be reserved or reached, refuses the request,
///         or the tag is unknown. The length is then 0, but untouched when there is no object, the printer
///         cannot be reserved, or tag 4 or 26 fails after the status.
/// @par Threads, reservations and time
/// With one object any thread, otherwise a bound one. It reserves the printer for each attempt. At most 4 x
/// (0.5 s + 1 exchange for the status + those of the tag): 86 s for a null buffer or an unknown tag, 166 s with
/// tags 0, 7, 16, 25 and 50 (1 exchange), 246 s with 26 (2), 646 s with 3 and 4 (7).
ZPRUSB_API uint32_t zprusb_getPrinterInfo(uint16_t tag, uint8_t* buffer, uint32_t* length);

/// Changes a setting. Tags 20 to 22 are kept in the object and go out with each page; they last until they are
/// set again (20 also until the next selection by number). Tags 23 to 26 are sent to the printer at once.
/// Repeats.
/// @param tag one of ::zprusb_settingTag.
/// @param data the value, of at least the size that ::ZPRUSB_SETTING_TAGS gives, or of `*length` bytes with
///        tags 25 and 26. Null gives 1006.
/// @param length number of bytes of the data, 1 to 23. Read with tags 25 and 26 only, where null gives 1006;
///        never changed.
/// @param resultCode receives the code; may be null.
/// @return 1 when the setting is kept, or the printer has acknowledged it.
/// @par Codes
/// 0; 1006 unknown tag, value or length outside its range, null pointer; 1500; 1501; 2000; 2504. With tags 23
/// to 26 also 2100, 2101, 2103 to 2109, 2200 to 2202, 2209 to 2212, 2305, 2306, 2307, 2309, 2310, 2500, 2600.
/// @par Threads, reservations and time
/// With one object any thread, otherwise a bound one. It reserves the printer for each attempt, with every tag.
/// At most 2 s with tags 20 to 22, 4 x (0.5 s + 1 exchange) = 86 s with the others.
ZPRUSB_API uint32_t zprusb_setPrinterInfo(uint16_t tag, const uint8_t* data, const uint32_t* length,
                                          uint16_t* resultCode);

/// Asks the printer for its status. Repeats.
/// @param resultCode receives the code; may be null.
/// @return 1 when the printer is ready.
/// @par Codes
/// 0; 1500; 1501; 2000; 2100, 2101, 2103 to 2109, 2200 to 2202, 2209 to 2212, 2305, 2306, 2307, 2309, 2310,
/// 2500, 2504, 2600.
/// @par Threads, reservations and time
/// With one object any thread, otherwise a bound one. It reserves the printer for each attempt. At most 4 x
/// (0.5 s + 1 exchange) = 86 s; 2 s for a printer that is busy.
ZPRUSB_API uint32_t zprusb_status(uint16_t* resultCode);

/// Asks several printers for their status, one after the other. The selection is as before afterwards; if there
/// was none, the last printer of the list that is present becomes selected.
/// @param printerList printer numbers, ended by 0xFF; at most 128 are read. Null: the call does nothing and
///        returns 0.
/// @param results room for one code for each number of the list; element i belongs to number i of the list.
///        Null: as for the list.
/// @return 1 when at least one of the printers is ready.
/// @par Codes of the elements
/// 0; 1500; 1501 in all of them; 2000 no printer of that number is open; 2100, 2101, 2103 to 2109, 2200 to
/// 2202, 2209 to 2212, 2305, 2306, 2307, 2309, 2310, 2500, 2504, 2600.
/// @par Threads, reservations and time
/// With one object any thread, otherwise a bound one. It reserves one printer at a time. At most 0.5 s + 1
/// exchange = 21.5 s for each printer of the list; 0.5 s for each that is busy.
ZPRUSB_API uint32_t zprusb_statusAll(const uint8_t* printerList, uint16_t* results);

/// Chooses the media size of the following pages; the printer's list must offer it, and the first entry that
/// fits is taken. Until it has succeeded once, pages have the size 0. Repeats.
/// @param mediaCode code of the media list. 0xF0 to 0xFE name exact sizes, all others a variable length.
/// @param width width as in the media list, not 0.
/// @param length length as in the media list, or from 7112 to the longest length for a variable one; where the
///        list says 0 for the longest length, that is 25120 with the codes 0xE0 to 0xEF, and none with others.
/// @param resultCode receives the code; may be null.
/// @return 1 when the size is chosen; 0: the former choice stays.
/// @par Codes
/// 0; 1006 width or length is 0, or the size is not offered; 1500; 1501; 2000; 2100, 2101, 2103 to 2109, 2200
/// to 2202, 2209 to 2212, 2305, 2306, 2307, 2309, 2310, 2500, 2504, 2600 to 2605.
/// @par Threads, reservations and time
/// With one object any thread, otherwise a bound one. It reserves the printer for each attempt. At most 4 x
/// (0.5 s + 1 exchange) = 86 s.
ZPRUSB_API uint32_t zprusb_checkMediaInfo(uint8_t mediaCode, uint32_t width, uint32_t length,
                                          uint16_t* resultCode);

/// Sets one of the printer's counters to zero. Repeats.
/// @param counterNumber 1 to 6: its place in the record of the information tag 4, where the first one is 0.
/// @param resultCode receives the code; may be null.
/// @return 1 when the printer has acknowledged it.
/// @par Codes
/// 0; 1006 another number; 1500; 1501; 2000; 2100, 2101, 2103 to 2109, 2200 to 2202, 2209 to 2212, 2305, 2306,
/// 2307, 2309, 2310, 2500, 2504, 2600.
/// @par Threads, reservations and time
/// With one object any thread, otherwise a bound one. It reserves the printer for each attempt. At most 4 x
/// (0.5 s + 2 exchanges) = 170 s, where both exchanges may fail.
ZPRUSB_API uint32_t zprusb_resetCounter(uint8_t counterNumber, uint16_t* resultCode);

/// Sets the number of copies of each page that is started before the next zprusb_endpage().
/// @param copies 1 to 999; it is 1 after opening and after each zprusb_endpage().
/// @param resultCode receives the code; may be null.
/// @return 1; 0: the number is as before.
/// @par Codes
/// 0; 1006 outside 1 to 999; 1501.
/// @par Threads, reservations and time
/// With one object any thread, otherwise a bound one. It sends nothing, reserves nothing and waits for nothing,
/// not even its turn.
ZPRUSB_API uint32_t zprusb_copies(uint16_t copies, uint16_t* resultCode);

/// Starts a page of the size that zprusb_checkMediaInfo() has chosen, if the printer is ready, and keeps the
/// printer reserved for the calling thread until zprusb_endpage(). Repeats.
/// @param pageId receives printer number x 256 + job number (1 to 255, one more than the printer's last); 0
///        when it fails before that is known; untouched with 1501. May be null.
/// @param resultCode receives the code; may be null.
/// @return 1 when the printer has acknowledged the page; 0: this call has reserved nothing.
/// @par Codes
/// 0; 1500; 1501; 2000; 2100 also while the printer takes no page; 2101, 2103 to 2109, 2200 to 2202, 2209 to
/// 2212, 2305, 2306, 2307, 2309, 2310, 2500, 2504, 2600.
/// @par Threads, reservations and time
/// With one object any thread, otherwise a bound one; the same has to end the page. At most 4 x (0.5 s + 5
/// exchanges) = 406 s; 2 s for a printer that is busy.
ZPRUSB_API uint32_t zprusb_startpage(uint16_t* pageId, uint16_t* resultCode);

/// Starts a long page, or one section of it. Section 0 is started first and keeps the printer reserved; the
/// sections then have the width and length that the entry of the media list gives them. Repeats.
/// @param pageId as for zprusb_startpage().
/// @param sectionIndex 0: the whole print, as zprusb_startpage(). 1 to 5: a section, which reserves the printer
///        only while it looks at its status; when it fails, it ends the reservation of the whole print.
/// @param resultCode receives the code; may be null.
/// @return 1 when the printer has acknowledged it.
/// @par Codes
/// 0; 1006 a section above 5; 1500; 1501; 2000; 2100 also while the printer takes no page; 2101, 2103 to 2109,
/// 2200 to 2202, 2209 to 2212, 2305, 2306, 2307, 2309, 2310, 2500, 2504, 2600.
/// @par Threads, reservations and time
/// With one object any thread, otherwise a bound one; all sections and the end of the page from the same. At
/// most 4 x (0.5 s + 5 exchanges) = 406 s for section 0, 4 x (1 s + 5 exchanges) = 408 s for the others.
ZPRUSB_API uint32_t zprusb_startpagelong(uint16_t* pageId, uint8_t sectionIndex, uint16_t* resultCode);

/// Sends image data of the started page, in as many calls as the caller likes. They go out as they are: the
/// library neither counts them nor checks that a page was started. How many bytes a page has, and how they make
/// up its pixels, the printer's manual says. The simulator and the tools take width x length at 300 dots per
/// inch (::ZPRUSB_DOTS_PER_INCH), 8-bit RGB, row by row.
/// @param data the bytes. Null gives 1006 unless the length is 0.
/// @param length number of bytes; not changed. 0: nothing is sent, 0 is returned and no code is written. Null
///        gives 1006.
/// @param resultCode receives the code; may be null.
/// @return 1 when all bytes were handed over; 0: part of them may have been, and the page cannot be completed.
/// @par Codes
/// 0; 1006 null pointer; 1501; 2600.
/// @par Threads, reservations and time
/// The thread that started the page. It relies on the reservation of the page. It blocks for as long as the
/// printer takes no data, without limit, and with it all calls of the process but zprusb_copies() and
/// zprusb_endpage(); data in several calls let the others come in between.
ZPRUSB_API uint32_t zprusb_write(const uint8_t* data, const uint32_t* length, uint16_t* resultCode);

/// Ends the page: releases the printer and sets the number of copies back to 1. Sends nothing.
/// @param resultCode receives the code; may be null.
/// @return 1; 0 only without an object.
/// @par Codes
/// 0, also when no page was started; 1501.
/// @par Threads, reservations and time
/// The thread that started the page; from another one it only sets the copies back. It waits for nothing, not
/// even its turn.
ZPRUSB_API uint32_t zprusb_endpage(uint16_t* resultCode);

/// Makes the printer's LED flash, also when its status is an error.
/// @param resultCode receives the code; may be null.
/// @return 1 when the printer has acknowledged it.
/// @par Codes
/// 0; 1500; 1501; 2000; 2504 the printer cannot be reserved; 2600 whatever fails after that.
/// @par Threads, reservations and time
/// With one object any thread, otherwise a bound one. It reserves the printer. At most 0.5 s + 2 exchanges =
/// 41.5 s.
ZPRUSB_API uint32_t zprusb_blinkLED(uint16_t* resultCode);

/// Resets the printer, also when its status is an error. Does not wait until it has started again.
/// @param resultCode receives the code; may be null.
/// @return 1 when the printer has acknowledged it.
/// @par Codes
/// 0; 1500; 1501; 2000; 2504 the printer cannot be reserved; 2600 whatever fails after that.
/// @par Threads, reservations and time
/// With one object any thread, otherwise a bound one. It reserves the printer. At most 0.5 s + 2 exchanges =
/// 41.5 s.
ZPRUSB_API uint32_t zprusb_resetPrinter(uint16_t* resultCode);

#ifdef __cplusplus
}
#endif

#endif
