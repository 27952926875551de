"""The RQX5820 printer library for Python.

    import zprusb
    with zprusb.Session() as session:
        session.choose_media(0xF1, 15240, 10160)
        with session.page() as page:
            page.write(pixels)

The library is taken from the path in the environment variable ZPRUSB_LIBRARY; without it, from beside this file, and
then from where the system looks for libraries.
"""

import ctypes
import os
import sys
from ctypes import POINTER, byref, c_char_p, c_uint8, c_uint16, c_uint32, c_void_p
from pathlib import Path

from zprusb_codes import CODES

MAX_PRINTERS = 128
LABEL_SIZE = 23
NO_PRINTER = 255

_FILE = "RQX5820usb.dll" if sys.platform == "win32" else "libRQX5820usb.so"

# Results and parameters; the last parameter of most is the result code.
_CODE = POINTER(c_uint16)
_SIZE = POINTER(c_uint32)
_FUNCTIONS = {
    "MakeObject": (c_uint32, c_uint16),
    "ReleaseObject": (c_uint32, _CODE),
    "attachObjectCount": (c_uint32, POINTER(c_uint16), POINTER(c_uint16)),
    "open": (c_uint32, _CODE),
    "close": (None,),
    "listupPrinter": (c_uint32, POINTER(c_uint8)),
    "listupPrinterLbl": (c_uint32, c_char_p),
    "selectPrinter": (c_uint32, c_uint8, _CODE),
    "selectPrinterLbl": (c_void_p, c_char_p, _CODE),
    "getPrinterInfo": (c_uint32, c_uint16, c_char_p, _SIZE),
    "setPrinterInfo": (c_uint32, c_uint16, c_char_p, _SIZE, _CODE),
    "status": (c_uint32, _CODE),
    "statusAll": (c_uint32, c_char_p, POINTER(c_uint16)),
    "checkMediaInfo": (c_uint32, c_uint8, c_uint32, c_uint32, _CODE),
    "resetCounter": (c_uint32, c_uint8, _CODE),
    "copies": (c_uint32, c_uint16, _CODE),
    "startpage": (c_uint32, POINTER(c_uint16), _CODE),
    "startpagelong": (c_uint32, POINTER(c_uint16), c_uint8, _CODE),
    "write": (c_uint32, c_char_p, _SIZE, _CODE),
    "endpage": (c_uint32, _CODE),
    "blinkLED": (c_uint32, _CODE),
    "resetPrinter": (c_uint32, _CODE),
}


class Error(Exception):
    """What the library refused, with the number and the name of its result code."""

    def __init__(self, code):
        self.code = code
        self.name, meaning, remedy = CODES.get(code, ("UNKNOWN", "This code is unknown.", ""))
        super().__init__(f"code {code}: {meaning} {remedy}".rstrip())


def _load():
    beside = Path(__file__).resolve().parent / _FILE
    path = os.environ.get("ZPRUSB_LIBRARY") or (str(beside) if beside.exists() else _FILE)
    library = ctypes.CDLL(path)
    for name, (result, *parameters) in _FUNCTIONS.items():
        function = getattr(library, "zprusb_" + name)
        function.restype, function.argtypes = result, parameters
    return library


_library = _load()


def call(name, *arguments):
    """Calls a function whose last parameter is the result code. A failure is an Error."""
    code = c_uint16()
    result = getattr(_library, "zprusb_" + name)(*arguments, byref(code))
    if not result:
        raise Error(code.value)
    return result


def make_objects(count):
    """Lets so many threads work with a printer of their own."""
    if not _library.zprusb_MakeObject(count):
        raise ValueError(f"{count} printer objects can't be made.")


class Session:
    """The calling thread's share of the library; to be closed on the same thread."""

    def __enter__(self):
        call("open")
        return self

    def __exit__(self, *_):
        _library.zprusb_close()

    def printers(self):
        """The numbers of the printers that are connected."""
        numbers = (c_uint8 * MAX_PRINTERS)()
        return list(numbers[: _library.zprusb_listupPrinter(numbers)])

    def select(self, printer):
        code = c_uint16()
        if _library.zprusb_selectPrinter(printer, byref(code)) == NO_PRINTER:
            raise Error(code.value)

    def status(self):
        """The result code that tells the printer's state; 0 when it is ready."""
        code = c_uint16()
        _library.zprusb_status(byref(code))
        return code.value

    def info(self, tag):
        """The record of a tag, as bytes; None when the printer doesn't give it."""
        length = c_uint32()
        if not _library.zprusb_getPrinterInfo(tag, None, byref(length)):
            return None
        record = ctypes.create_string_buffer(length.value)
        return record.raw[: length.value] if _library.zprusb_getPrinterInfo(tag, record, byref(length)) else None

    def set(self, tag, value):
        call("setPrinterInfo", tag, value, byref(c_uint32(len(value))))

    def choose_media(self, code, width, length):
        """Width and length are in 1/100 mm."""
        call("checkMediaInfo", code, width, length)

    def page(self, copies=1):
        return Page(copies)


class Page:
    """A page of the thread's printer. However it ends, the printer is free for others afterwards."""

    def __init__(self, copies):
        self._copies = copies

    def __enter__(self):
        call("copies", self._copies)
        call("startpage", None)
        return self

    def __exit__(self, *_):
        _library.zprusb_endpage(None)

    def write(self, pixels):
        """8-bit RGB, row by row, as many rows at a time as one likes."""
        data = bytes(pixels)
        if data:
            call("write", data, byref(c_uint32(len(data))))
