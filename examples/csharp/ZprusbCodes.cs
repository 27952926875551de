// The library's result codes in words.
namespace Zprusb
{
    public static class Codes
    {
        public static string Text(ushort code)
        {
            switch (code)
            {
                case 0: return "Success. You need do nothing."; // SUCCESS
                case 1000: return "There is not enough memory. Close other programs and try again."; // OUT_OF_MEMORY
                case 1002: return "The control library is missing beside this library, or it is incomplete. Put the printer's control library, or the simulator, into the folder of this library."; // NO_CONTROL_LIBRARY
                case 1004: return "No printer was found. Connect the printer by USB, switch it on, and open again."; // NO_PRINTER_FOUND
                case 1005: return "A firmware file cannot be opened, read or written. Check that the file is there, is complete, and may be read."; // FILE_FAILED
                case 1006: return "An argument is outside its allowed range, or the media size is not offered. Compare the arguments with the ranges in the documentation and with the printer's media list."; // BAD_ARGUMENT
                case 1008: return "The printer that was asked for is not present. List the printers and choose one of them."; // NOT_SELECTABLE
                case 1500: return "Another thread or program is using the printer. Wait until its page has ended and try again."; // PRINTER_BUSY
                case 1501: return "The calling thread has no printer object. Call zprusb_open on this thread first, and make as many objects as there are threads."; // NO_OBJECT
                case 1502: return "The printer objects cannot be released while a thread is still bound to one. Call zprusb_close on every thread that called zprusb_open."; // STILL_IN_USE
                case 2000: return "No printer is selected, or the selected printer is no longer connected. Connect the printer, list the printers and select one."; // NO_PRINTER
                case 2100: return "The printer is not ready: condition 2100. Wait until the printer has finished, or look at its display."; // CONDITION_2100
                case 2101: return "The printer reports condition 2101. Do what the printer's display asks for, and try again."; // CONDITION_2101
                case 2103: return "The printer reports condition 2103. Do what the printer's display asks for, and try again."; // CONDITION_2103
                case 2104: return "The printer reports condition 2104. Do what the printer's display asks for, and try again."; // CONDITION_2104
                case 2105: return "The printer reports condition 2105. Do what the printer's display asks for, and try again."; // CONDITION_2105
                case 2106: return "The printer reports condition 2106. Do what the printer's display asks for, and try again."; // CONDITION_2106
                case 2107: return "The printer reports condition 2107. Do what the printer's display asks for, and try again."; // CONDITION_2107
                case 2108: return "The printer reports condition 2108. Do what the printer's display asks for, and try again."; // CONDITION_2108
                case 2109: return "The printer reports condition 2109. Do what the printer's display asks for, and try again."; // CONDITION_2109
                case 2200: return "The printer gives notice 2200. Look at the printer's display, and try again."; // NOTICE_2200
                case 2201: return "The printer gives notice 2201. Look at the printer's display, and try again."; // NOTICE_2201
                case 2202: return "The printer gives notice 2202. Look at the printer's display, and try again."; // NOTICE_2202
                case 2209: return "The printer gives notice 2209. Look at the printer's display, and try again."; // NOTICE_2209
                case 2210: return "The printer gives notice 2210. Look at the printer's display, and try again."; // NOTICE_2210
                case 2211: return "The printer gives notice 2211. Look at the printer's display, and try again."; // NOTICE_2211
                case 2212: return "The printer gives notice 2212. Look at the printer's display, and try again."; // NOTICE_2212
                case 2305: return "The printer reports a device error of group 6, details 5 to 9. Switch the printer off and on; if the error returns, call service."; // DEVICE_ERROR_2305
                case 2306: return "The printer reports a device error of group 6, details 2 to 4. Switch the printer off and on; if the error returns, call service."; // DEVICE_ERROR_2306
                case 2307: return "The printer reports a device error of group 5. Switch the printer off and on; if the error returns, call service."; // DEVICE_ERROR_2307
                case 2309: return "The printer reports a device error of group 6, detail 1 or 11. Switch the printer off and on; if the error returns, call service."; // DEVICE_ERROR_2309
                case 2310: return "The printer reports a device error of group 6, detail 16. Switch the printer off and on; if the error returns, call service."; // DEVICE_ERROR_2310
                case 2500: return "The printer reports a device error of group 1 to 4. Switch the printer off and on; if the error returns, call service."; // DEVICE_ERROR_2500
                case 2504: return "The printer or the operating system reported something unexpected. Try again; if it returns, look at the lock files and at the number of open files of the process, then close and open the library."; // UNEXPECTED
                case 2600: return "The communication with the printer failed. Check the cable and that the printer is on; then close and open the library."; // COMMUNICATION
                case 2601: return "The printer refused the request with error 1. Close and open the library, and try again."; // ANSWER_ERROR_1
                case 2602: return "The printer refused the request with error 2. Close and open the library, and try again."; // ANSWER_ERROR_2
                case 2603: return "The printer refused the request with error 3. Close and open the library, and try again."; // ANSWER_ERROR_3
                case 2604: return "The printer refused the request with error 4. Close and open the library, and try again."; // ANSWER_ERROR_4
                case 2605: return "The printer refused the request with error 5. Close and open the library, and try again."; // ANSWER_ERROR_5
                case 3001: return "The firmware file is not S-record text. Choose the right file."; // NOT_S_RECORDS
                case 3002: return "A checksum in the firmware file does not match. Get an undamaged copy of the file."; // BAD_CHECKSUM
                case 3003: return "An address in the firmware file lies outside the permitted range. Choose the right file."; // BAD_ADDRESS
                case 3200: return "The printer did not accept the start of the firmware update. Check target, start and length, and that the printer is ready."; // UPDATE_REFUSED
                case 8000: return "Self-diagnosis results came together with condition 2106. Look at the printer's display and run the diagnosis again."; // DIAGNOSIS_WITH_2106
                default: return "This code is unknown.";
            }
        }
    }
}
