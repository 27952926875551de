// The library for C#: what was opened is closed, what was begun is ended, and what fails is an exception.
using System;
using System.Linq;
using System.Runtime.InteropServices;

namespace Zprusb
{
    /// The functions as they are. The system finds RQX5820usb.dll or libRQX5820usb.so.
    public static class Native
    {
        private const string Library = "RQX5820usb";

        [DllImport(Library)] public static extern uint zprusb_MakeObject(ushort objectCount);
        [DllImport(Library)] public static extern uint zprusb_ReleaseObject(out ushort resultCode);
        [DllImport(Library)] public static extern uint zprusb_attachObjectCount(out ushort boundThreads, out ushort objectCount);
        [DllImport(Library)] public static extern uint zprusb_open(out ushort resultCode);
        [DllImport(Library)] public static extern void zprusb_close();
        [DllImport(Library)] public static extern uint zprusb_listupPrinter([Out] byte[] list);
        [DllImport(Library)] public static extern uint zprusb_listupPrinterLbl([Out] byte[] labels);
        [DllImport(Library)] public static extern uint zprusb_selectPrinter(byte printerNumber, out ushort resultCode);
        [DllImport(Library)] public static extern IntPtr zprusb_selectPrinterLbl(byte[] label, out ushort resultCode);
        [DllImport(Library)] public static extern uint zprusb_getPrinterInfo(ushort tag, [Out] byte[] buffer, ref uint length);
        [DllImport(Library)] public static extern uint zprusb_setPrinterInfo(ushort tag, byte[] data, ref uint length, out ushort resultCode);
        [DllImport(Library)] public static extern uint zprusb_status(out ushort resultCode);
        [DllImport(Library)] public static extern uint zprusb_statusAll(byte[] printerList, [Out] ushort[] results);
        [DllImport(Library)] public static extern uint zprusb_checkMediaInfo(byte mediaCode, uint width, uint length, out ushort resultCode);
        [DllImport(Library)] public static extern uint zprusb_resetCounter(byte counterNumber, out ushort resultCode);
        [DllImport(Library)] public static extern uint zprusb_copies(ushort copies, out ushort resultCode);
        [DllImport(Library)] public static extern uint zprusb_startpage(out ushort pageId, out ushort resultCode);
        [DllImport(Library)] public static extern uint zprusb_startpagelong(out ushort pageId, byte sectionIndex, out ushort resultCode);
        [DllImport(Library)] public static extern uint zprusb_write(byte[] data, ref uint length, out ushort resultCode);
        [DllImport(Library)] public static extern uint zprusb_endpage(out ushort resultCode);
        [DllImport(Library)] public static extern uint zprusb_blinkLED(out ushort resultCode);
        [DllImport(Library)] public static extern uint zprusb_resetPrinter(out ushort resultCode);
    }

    public class PrinterException : Exception
    {
        public readonly ushort Code;

        public PrinterException(ushort code) : base("code " + code + ": " + Codes.Text(code))
        {
            Code = code;
        }

        internal static void ThrowUnless(bool done, ushort code)
        {
            if (!done) throw new PrinterException(code);
        }
    }

    /// The calling thread's share of the library; to be disposed of on the same thread.
    public sealed class Session : IDisposable
    {
        private const int MaxPrinters = 128;
        private const uint NoPrinter = 255;

        public Session()
        {
            ushort code;
            PrinterException.ThrowUnless(Native.zprusb_open(out code) == 1, code);
        }

        public void Dispose()
        {
            Native.zprusb_close();
        }

        /// The numbers of the printers that are connected.
        public byte[] Printers()
        {
            var list = new byte[MaxPrinters];
            return list.Take((int)Native.zprusb_listupPrinter(list)).ToArray();
        }

        public void Select(byte printer)
        {
            ushort code;
            PrinterException.ThrowUnless(Native.zprusb_selectPrinter(printer, out code) != NoPrinter, code);
        }

        /// Width and length are in 1/100 mm.
        public void ChooseMedia(byte mediaCode, uint width, uint length)
        {
            ushort code;
            PrinterException.ThrowUnless(Native.zprusb_checkMediaInfo(mediaCode, width, length, out code) == 1, code);
        }

        public Page StartPage(ushort copies = 1)
        {
            return new Page(copies);
        }
    }

    /// A page of the thread's printer. However it ends, the printer is free for others afterwards.
    public sealed class Page : IDisposable
    {
        internal Page(ushort copies)
        {
            ushort code, pageId;
            PrinterException.ThrowUnless(Native.zprusb_copies(copies, out code) == 1, code);
            PrinterException.ThrowUnless(Native.zprusb_startpage(out pageId, out code) == 1, code);
        }

        public void Dispose()
        {
            ushort code;
            Native.zprusb_endpage(out code);
        }

        /// 8-bit RGB, row by row, as many rows at a time as one likes.
        public void Write(byte[] pixels)
        {
            ushort code;
            var length = (uint)pixels.Length;
            PrinterException.ThrowUnless(Native.zprusb_write(pixels, ref length, out code) == 1, code);
        }
    }
}
