/* A program of the bench's guest. It exits with 0 when what it saw is what it was told to expect.
   client exchange CODE [MILLISECONDS]   the first status gives the code, within the time
   client fails FROM TO                  2600 after so many milliseconds
   client recover FROM TO                likewise, then a good exchange
   client loop SECONDS                   status without a pause: nothing but 0 and 1500, and 0 at least once
   client page close|abrupt              a page, and how the process ends after it
   client speed NODE                     compares page data with bare transfers
   client cut                            a page in which the printer is unplugged: 2600, then 2000
   client replug ROUNDS                  unplugs and plugs in, and finds the printer by the same number
   client hold SECONDS [child]           one exchange, then nothing; with a child that lives as long
   client examine WORDS                  what the control library says of the printers has them
   PRINTER in the environment chooses the printer by its number. */
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/usbdevice_fs.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <time.h>
#include <unistd.h>

#include "zprusb.h"

enum { width = 1800, length = 1200, mediaCode = 0xF1, mediaWidth = 15240, mediaLength = 10160 };

static uint8_t pixels[width * length * 3];

static double milliseconds(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return 1e3 * (double)time.tv_sec + (double)time.tv_nsec / 1e6;
}

static void pause_milliseconds(long duration) {
    const struct timespec time = {duration / 1000, duration % 1000 * 1000000};
    nanosleep(&time, NULL);
}

typedef uint32_t (*Call)(uint16_t* code);

static uint16_t timed(Call call, double* took) {
    uint16_t code = 0xFFFF;
    const double begin = milliseconds();
    call(&code);
    *took = milliseconds() - begin;
    printf("%u after %.1f ms\n", code, *took);
    return code;
}

static int exchange(unsigned expected, double limit) {
    double took;
    return timed(zprusb_status, &took) != expected || took > limit;
}

/* By an exchange that is tried once. */
static int fails(double shortest, double longest) {
    double took;
    return timed(zprusb_blinkLED, &took) != 2600 || took < shortest || took > longest;
}

static int recover(double shortest, double longest) {
    if (fails(shortest, longest)) return 1;
    pause_milliseconds(500);
    return exchange(0, 1000);
}

static int loop(double seconds) {
    unsigned good = 0, busy = 0, other = 0;
    const double end = milliseconds() + 1e3 * seconds;
    while (milliseconds() < end) {
        uint16_t code = 0xFFFF;
        zprusb_status(&code);
        if (code == 0) {
            ++good;
        } else if (code == 1500) {
            ++busy;
        } else {
            ++other;
            printf("status: %u\n", code);
        }
    }
    printf("%u good, %u busy, %u other\n", good, busy, other);
    return good == 0 || other != 0;
}

static uint16_t start_page(void) {
    uint16_t code = 0xFFFF, page = 0;
    for (int attempt = 0; attempt < 100; ++attempt) {
        if (zprusb_checkMediaInfo(mediaCode, mediaWidth, mediaLength, &code) && zprusb_startpage(&page, &code))
            break;
        pause_milliseconds(20);
    }
    return code;
}

static uint16_t write_page(void) {
    uint32_t size = sizeof pixels;
    uint16_t code = start_page();
    if (code != 0) return code;
    for (size_t i = 0; i < sizeof pixels; ++i) pixels[i] = (uint8_t)(i * 31 + i / 4096);
    const double begin = milliseconds();
    zprusb_write(pixels, &size, &code);
    printf("page data: %u after %.1f ms\n", code, milliseconds() - begin);
    return code;
}

/* Sends the bytes as the library does, but without it and its control library: 4096 by 4096. */
static int send_bare(const char* path) {
    const int node = open(path, O_RDWR);
    struct usbdevfs_disconnect_claim claim = {0, USBDEVFS_DISCONNECT_CLAIM_IF_DRIVER, "usbfs"};
    unsigned interface = 0;
    int failed = ioctl(node, USBDEVFS_DISCONNECT_CLAIM, &claim);
    for (size_t i = 0; i < sizeof pixels && !failed; i += 4096) {
        const size_t rest = sizeof pixels - i;
        const unsigned size = rest < 4096 ? (unsigned)rest : 4096;
        struct usbdevfs_bulktransfer transfer = {1, size, 5000, pixels + i};
        failed = ioctl(node, USBDEVFS_BULK, &transfer) != (int)size;
    }
    failed |= ioctl(node, USBDEVFS_RELEASEINTERFACE, &interface);
    close(node);
    return failed;
}

/* The best of three pages each way, as the machine has other work too. */
static int speed(const char* node) {
    double best[2] = {1e9, 1e9};
    for (int i = 0; i < 6; ++i) {
        uint32_t size = sizeof pixels;
        uint16_t code = start_page();
        if (code != 0) return 1;
        const double begin = milliseconds();
        if (i % 2 == 0 ? send_bare(node) : !zprusb_write(pixels, &size, &code)) return 1;
        const double took = milliseconds() - begin;
        if (took < best[i % 2]) best[i % 2] = took;
        zprusb_endpage(&code);
    }
    printf("%.0f ms bare, %.0f ms through the library: %.2f\n", best[0], best[1], best[0] / best[1]);
    return 0;
}

static int page(void) {
    uint16_t code = write_page();
    if (code == 0) zprusb_endpage(&code);
    printf("page: %u\n", code);
    return code != 0;
}

/* Until the code comes, within 10 s. */
static int wait_for(unsigned expected) {
    uint16_t code = 0xFFFF;
    for (double end = milliseconds() + 1e4; milliseconds() < end; pause_milliseconds(10)) {
        zprusb_status(&code);
        if (code == expected) return 0;
    }
    printf("%u instead of %u\n", code, expected);
    return 1;
}

static int cut(void) {
    return write_page() != 2600 || wait_for(2000);
}

static void tell_printer(const char* command) {
    FILE* line = fopen("/dev/ttyS1", "w");
    fprintf(line, "%s\n", command);
    fclose(line);
}

static int count_descriptors(void) {
    int count = 0;
    DIR* folder = opendir("/proc/self/fd");
    while (readdir(folder) != NULL) ++count;
    closedir(folder);
    return count;
}

static int find_again(uint8_t number) {
    uint8_t list[128];
    uint16_t code;
    for (double end = milliseconds() + 2e4; milliseconds() < end; pause_milliseconds(50)) {
        zprusb_listupPrinter(list);
        if (memchr(list, number, sizeof list) != NULL) return zprusb_selectPrinter(number, &code) != number;
    }
    printf("not found again\n");
    return 1;
}

static int replug_once(uint8_t number) {
    tell_printer("unplug");
    if (wait_for(2000)) return 1;
    tell_printer("plug");
    return find_again(number) || exchange(0, 1000);
}

static int replug(int rounds) {
    uint16_t code;
    const uint8_t number = (uint8_t)zprusb_selectPrinter(255, &code);
    if (replug_once(number)) return 1;
    const int descriptors = count_descriptors();
    for (int round = 1; round < rounds; ++round) {
        if (replug_once(number)) return 1;
    }
    printf("%d descriptors, then %d\n", descriptors, count_descriptors());
    return count_descriptors() != descriptors || page();
}

static int hold(unsigned seconds, int with_child) {
    const int failed = exchange(0, 1000);
    fflush(stdout);
    if (with_child && fork() == 0) {
        sleep(seconds);
        _exit(0);
    }
    sleep(seconds);
    return failed;
}

static int examine(const char* words) {
    char text[1000];
    void* library = dlopen("libRQX5820UsbCtrl.so", RTLD_NOW);
    uint32_t (*function)(char*, uint32_t);
    *(void**)&function = dlsym(library, "zprusbusb_examine");
    function(text, sizeof text);
    printf("%s", text);
    return strstr(text, words) == NULL;
}

static int run(int count, char** words) {
    const char* what = words[1];
    if (strcmp(what, "exchange") == 0)
        return exchange((unsigned)atoi(words[2]), count > 3 ? atof(words[3]) : 1e9);
    if (strcmp(what, "fails") == 0) return fails(atof(words[2]), atof(words[3]));
    if (strcmp(what, "recover") == 0) return recover(atof(words[2]), atof(words[3]));
    if (strcmp(what, "loop") == 0) return loop(atof(words[2]));
    if (strcmp(what, "page") == 0) return page();
    if (strcmp(what, "speed") == 0) return speed(words[2]);
    if (strcmp(what, "cut") == 0) return cut();
    if (strcmp(what, "replug") == 0) return replug(atoi(words[2]));
    return strcmp(what, "hold") != 0 || hold((unsigned)atoi(words[2]), count > 3);
}

int main(int count, char** words) {
    uint16_t code = 0;
    const char* printer = getenv("PRINTER");
    if (count < 2) return 2;
    if (strcmp(words[1], "examine") == 0) return examine(words[2]);
    if (!zprusb_open(&code)) {
        printf("open: %u\n", code);
        return 1;
    }
    if (printer != NULL) zprusb_selectPrinter((uint8_t)atoi(printer), &code);
    const int result = run(count, words);
    fflush(stdout);
    if (count > 2 && strcmp(words[2], "abrupt") == 0) _exit(result);
    zprusb_close();
    return result;
}
