#include "interface.c"
