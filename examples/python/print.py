"""Prints a page on every printer."""

import sys

import zprusb

WIDTH, HEIGHT = 1800, 1200  # 6 x 4 inch at 300 dots per inch


def rows():
    for y in range(HEIGHT):
        blue = 255 * y // HEIGHT
        yield bytes((0, 0, blue)) * WIDTH


def main():
    with zprusb.Session() as session:
        for printer in session.printers():
            session.select(printer)
            session.choose_media(0xF1, 15240, 10160)
            with session.page() as page:
                for row in rows():
                    page.write(row)
            print(f"printer {printer} has the page")


try:
    main()
except zprusb.Error as error:
    sys.exit(str(error))
