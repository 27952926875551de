/// Calls of the library's entry points, as short as a test wants them.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "api/internal.h"

/// Adds a code to those that the tests have produced, when scripts/check-coverage keeps them.
inline void noteCode(uint16_t code) {
    if (const char* file = std::getenv("ZPRUSB_CODES_SEEN")) std::ofstream(file, std::ios::app) << code << '\n';
}

/// The result code of an entry point, whose return value has to fit it.
uint16_t codeOf(auto entry, auto... arguments) {
    uint16_t code = 0xABCD;
    const uint32_t success = entry(arguments..., &code);
    EXPECT_EQ(success, code == ZPRUSB_SUCCESS ? 1u : 0u) << code;
    noteCode(code);
    return code;
}

/// The same on a thread of its own.
uint16_t codeElsewhere(auto entry, auto... arguments) {
    uint16_t code = 0;
    std::jthread([&] { code = codeOf(entry, arguments...); }).join();
    return code;
}

/// The status of printer 0 after one attempt.
inline uint16_t statusAtOnce() {
    const uint8_t list[] = {0, ZPRUSB_LIST_END};
    uint16_t code = 0xABCD;
    zprusb_statusAll(list, &code);
    return code;
}

/// How many threads are bound and how many objects there are.
inline std::pair<int, int> objectCounts() {
    uint16_t bound = 0xABCD, objects = 0xABCD;
    EXPECT_EQ(zprusb_attachObjectCount(&bound, &objects), 1u);
    return {bound, objects};
}

inline std::vector<uint8_t> listPrinters() {
    std::vector<uint8_t> list(128);
    const uint32_t found = zprusb_listupPrinter(list.data());
    for (size_t i = found; i < list.size(); ++i) EXPECT_EQ(list[i], ZPRUSB_LIST_END);
    list.resize(found);
    return list;
}

inline std::pair<uint32_t, std::string> listLabels() {
    std::string labels(2944, 'x');
    const uint32_t found = zprusb_listupPrinterLbl(labels.data());
    return {found, labels};
}

inline std::pair<uint32_t, std::vector<uint8_t>> listIds() {
    std::vector<uint8_t> ids(1024, 0x5A);
    const uint32_t found = zprusb_listupPrinterId(ids.data());
    return {found, ids};
}

/// The selected printer's number, or 255.
inline uint32_t selectedPrinter() {
    return zprusb_selectPrinter(255, nullptr);
}
