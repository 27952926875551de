#include <stdio.h>
#include <zprusb.h>
#include <zprusb_text.h>

enum { WIDTH = 1800, HEIGHT = 1200 };    /* 6 x 4 inch at 300 dots per inch */
static uint8_t pixels[HEIGHT][WIDTH][3]; /* RGB, row by row */

int main(void) {
    const uint32_t size = sizeof pixels;
    uint16_t code;
    for (int y = 0; y < HEIGHT; ++y)
        for (int x = 0; x < WIDTH; ++x) pixels[y][x][0] = (uint8_t)(255 * x / WIDTH);
    uint32_t printed =
        zprusb_open(&code) && zprusb_checkMediaInfo(0xF1, 15240, 10160, &code) && zprusb_startpage(NULL, &code);
    if (printed) {
        printed = zprusb_write(&pixels[0][0][0], &size, &code);
        zprusb_endpage(NULL);
    }
    zprusb_close();
    printf("code %u: %s\n", code, zprusb_resultWords(code).meaning);
    return printed ? 0 : 1;
}
