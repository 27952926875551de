#include "platform/module.h"

extern "C" void* loadBesideTestHost(const char* name) {
    return platform::loadBesideThisLibrary(name);
}
