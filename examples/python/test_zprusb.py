"""Tests a program's own printing against the simulator, without a printer:

    ZPRUSB_SIMULATOR=jam.json python3 test_zprusb.py
"""

import unittest

import zprusb

ROWS, ROW = 1200, b"\xff\x80\x00" * 1800


class Printing(unittest.TestCase):
    """The simulated printer of jam.json loses its connection in the middle of its second page."""

    def setUp(self):
        self.session = self.enterContext(zprusb.Session())
        self.session.choose_media(0xF1, 15240, 10160)

    def print_page(self):
        with self.session.page(copies=2) as page:
            for _ in range(ROWS):
                page.write(ROW)

    def test_pages_are_printed_until_one_jams(self):
        self.assertEqual(self.session.status(), 0)
        self.print_page()
        with self.assertRaises(zprusb.Error) as jam:
            self.print_page()
        self.assertEqual(jam.exception.name, "COMMUNICATION")
        self.assertIn("2600", str(jam.exception))

    def test_what_the_printer_refuses_is_an_error_with_its_code(self):
        with self.assertRaises(zprusb.Error) as error:
            self.session.choose_media(0xF9, 1, 1)
        self.assertEqual(error.exception.code, 1006)
        with self.assertRaises(zprusb.Error) as error:
            self.session.select(7)
        self.assertEqual(error.exception.name, "NOT_SELECTABLE")

    def test_information_and_settings_are_bytes(self):
        self.session.set(25, b"Kiosk left")
        self.assertEqual(self.session.info(25).rstrip(b"\0"), b"Kiosk left")
        self.assertIsNone(self.session.info(99))


if __name__ == "__main__":
    unittest.main()
