/* A control library whose functions are the test program's own. */
#pragma once

#include <stdint.h>

/* The functions that the library calls. The others exist and do nothing. */
struct FakeControlFunctions {
    uint64_t (*open)(uint32_t deviceNumber);
    void (*close)(uint64_t device);
    uint32_t (*getDeviceName)(uint64_t device, char* name);
    uint64_t (*getPipeHandle)(uint64_t device, uint8_t pipeNumber);
    void (*closePipe)(uint64_t pipe);
    uint64_t (*checkDeviceName)(uint32_t deviceNumber);
    uint32_t (*checkDevice)(uint64_t device);
};

/* To be called before the library opens; the table must outlive the library. */
#ifdef __cplusplus
extern "C"
#endif
    __attribute__((visibility("default"))) void
    fakeControlInstall(const struct FakeControlFunctions* functions);
