/// @file zprusb_text.h
/// The library's numbers in words, for messages and logs. Nothing here calls the library, so a program that
/// only reads such numbers needs not be linked with it. All texts are constant and in English; a number that is
/// unknown gives a text that says so, never null.
#ifndef ZPRUSB_TEXT_H
#define ZPRUSB_TEXT_H

#include "zprusb.h"

/// The name of a result code without its prefix, such as "PRINTER_BUSY".
/// @param resultCode any number; one that is no code gives UNKNOWN.
/// @return the name.
static inline const char* zprusb_resultName(uint16_t resultCode) {
    switch (resultCode) {
#define ZPRUSB_CASE(number, name, meaning, cause, remedy) \
    case number:                                          \
        return #name;
        ZPRUSB_RESULT_CODES(ZPRUSB_CASE)
#undef ZPRUSB_CASE
    }
    return "UNKNOWN";
}

/// What a result code says, in a sentence for the user.
/// @param resultCode any number.
/// @return the sentence.
static inline const char* zprusb_resultMeaning(uint16_t resultCode) {
    switch (resultCode) {
#define ZPRUSB_CASE(number, name, meaning, cause, remedy) \
    case number:                                          \
        return meaning;
        ZPRUSB_RESULT_CODES(ZPRUSB_CASE)
#undef ZPRUSB_CASE
    }
    return "This code is unknown.";
}

/// The likely cause of a result code.
/// @param resultCode any number.
/// @return the sentence.
static inline const char* zprusb_resultCause(uint16_t resultCode) {
    switch (resultCode) {
#define ZPRUSB_CASE(number, name, meaning, cause, remedy) \
    case number:                                          \
        return cause;
        ZPRUSB_RESULT_CODES(ZPRUSB_CASE)
#undef ZPRUSB_CASE
    }
    return "This version of the library does not give it.";
}

/// What the user can do about a result code.
/// @param resultCode any number.
/// @return the sentence.
static inline const char* zprusb_resultRemedy(uint16_t resultCode) {
    switch (resultCode) {
#define ZPRUSB_CASE(number, name, meaning, cause, remedy) \
    case number:                                          \
        return remedy;
        ZPRUSB_RESULT_CODES(ZPRUSB_CASE)
#undef ZPRUSB_CASE
    }
    return "Look for it in the documentation of a newer version.";
}

/// What the record of a tag of zprusb_getPrinterInfo() holds.
/// @param tag any number.
/// @return the words.
static inline const char* zprusb_infoContent(uint16_t tag) {
    switch (tag) {
#define ZPRUSB_CASE(number, name, size, content) \
    case number:                                 \
        return content;
        ZPRUSB_INFO_TAGS(ZPRUSB_CASE)
#undef ZPRUSB_CASE
    }
    return "unknown information";
}

/// What a tag of zprusb_setPrinterInfo() sets.
/// @param tag any number.
/// @return the words.
static inline const char* zprusb_settingContent(uint16_t tag) {
    switch (tag) {
#define ZPRUSB_CASE(number, name, size, content) \
    case number:                                 \
        return content;
        ZPRUSB_SETTING_TAGS(ZPRUSB_CASE)
#undef ZPRUSB_CASE
    }
    return "an unknown setting";
}

#endif
