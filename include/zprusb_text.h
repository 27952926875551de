/// @file zprusb_text.h
/// The library's numbers in words, for messages and logs. Nothing here calls the library, so a program that
/// only reads such numbers needs not be linked with it. All texts are constant and in English; a number that is
/// unknown gives texts that say so, never null.
#ifndef ZPRUSB_TEXT_H
#define ZPRUSB_TEXT_H

#include "zprusb.h"

/// A result code in words.
struct zprusb_words {
    const char* name;     ///< without its prefix, such as "PRINTER_BUSY"
    const char* meaning;  ///< what it says, a sentence for the user
    const char* cause;    ///< why, most likely
    const char* remedy;   ///< what the user can do about it
};

/// Puts a result code into words.
/// @param resultCode any number; one that is no code has the name "UNKNOWN".
/// @return the words.
static inline struct zprusb_words zprusb_resultWords(uint16_t resultCode) {
    struct zprusb_words words = {"UNKNOWN", "This code is unknown.",
                                 "This version of the library does not give it.",
                                 "Look for it in the documentation of a newer version."};
    switch (resultCode) {
#define ZPRUSB_CASE(number, itsName, itsMeaning, itsCause, itsRemedy) \
    case number:                                                      \
        words.name = #itsName;                                        \
        words.meaning = itsMeaning;                                   \
        words.cause = itsCause;                                       \
        words.remedy = itsRemedy;                                     \
        break;
        ZPRUSB_RESULT_CODES(ZPRUSB_CASE)
#undef ZPRUSB_CASE
    }
    return words;
}

#define ZPRUSB_CASE(number, name, size, content) \
    case number:                                 \
        return content;

/// What the record of a tag of zprusb_getPrinterInfo() holds.
/// @param tag any number.
/// @return the words.
static inline const char* zprusb_infoContent(uint16_t tag) {
    switch (tag) { ZPRUSB_INFO_TAGS(ZPRUSB_CASE) }
    return "unknown information";
}

/// What a tag of zprusb_setPrinterInfo() sets.
/// @param tag any number.
/// @return the words.
static inline const char* zprusb_settingContent(uint16_t tag) {
    switch (tag) { ZPRUSB_SETTING_TAGS(ZPRUSB_CASE) }
    return "an unknown setting";
}

#undef ZPRUSB_CASE

#endif
