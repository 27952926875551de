/* Built as C99 and as C++11, with every warning an error: a prototype that is not what programs were compiled
   with, or a header that one of the two languages refuses, ends the build. */
#include <zprusb.h>
#include <zprusb_text.h>

struct Interface {
    uint32_t (*makeObject)(uint16_t);
    uint32_t (*releaseObject)(uint16_t*);
    uint32_t (*attachObjectCount)(uint16_t*, uint16_t*);
    uint32_t (*open)(uint16_t*);
    void (*close)(void);
    uint32_t (*listupPrinter)(uint8_t*);
    uint32_t (*listupPrinterLbl)(char*);
    uint32_t (*selectPrinter)(uint8_t, uint16_t*);
    char* (*selectPrinterLbl)(const char*, uint16_t*);
    uint32_t (*getPrinterInfo)(uint16_t, uint8_t*, uint32_t*);
    uint32_t (*setPrinterInfo)(uint16_t, const uint8_t*, const uint32_t*, uint16_t*);
    uint32_t (*status)(uint16_t*);
    uint32_t (*statusAll)(const uint8_t*, uint16_t*);
    uint32_t (*checkMediaInfo)(uint8_t, uint32_t, uint32_t, uint16_t*);
    uint32_t (*resetCounter)(uint8_t, uint16_t*);
    uint32_t (*copies)(uint16_t, uint16_t*);
    uint32_t (*startpage)(uint16_t*, uint16_t*);
    uint32_t (*startpagelong)(uint16_t*, uint8_t, uint16_t*);
    uint32_t (*write)(const uint8_t*, const uint32_t*, uint16_t*);
    uint32_t (*endpage)(uint16_t*);
    uint32_t (*blinkLED)(uint16_t*);
    uint32_t (*resetPrinter)(uint16_t*);
    struct zprusb_words (*resultWords)(uint16_t);
    const char* (*contents[2])(uint16_t);
};

extern const struct Interface INTERFACE;
const struct Interface INTERFACE = {
    zprusb_MakeObject,
    zprusb_ReleaseObject,
    zprusb_attachObjectCount,
    zprusb_open,
    zprusb_close,
    zprusb_listupPrinter,
    zprusb_listupPrinterLbl,
    zprusb_selectPrinter,
    zprusb_selectPrinterLbl,
    zprusb_getPrinterInfo,
    zprusb_setPrinterInfo,
    zprusb_status,
    zprusb_statusAll,
    zprusb_checkMediaInfo,
    zprusb_resetCounter,
    zprusb_copies,
    zprusb_startpage,
    zprusb_startpagelong,
    zprusb_write,
    zprusb_endpage,
    zprusb_blinkLED,
    zprusb_resetPrinter,
    zprusb_resultWords,
    {zprusb_infoContent, zprusb_settingContent},
};
