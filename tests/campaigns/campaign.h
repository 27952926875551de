/// Simulated printers in the test's process, with pages of 10 x 10 dots that carry their author in every byte.
#pragma once

#include <gtest/gtest.h>
#include <zprusb.h>
#include <zprusb_simulator.h>

#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "calls.h"

using Json = nlohmann::json;

/// The number of rounds of a campaign: of its short form, or of the long one that scripts/soak runs.
unsigned rounds(unsigned inShort, unsigned inLong);

constexpr uint32_t pageSize = 10 * 10 * 3;

/// Prints one page on the selected printer and ends it whatever happens.
/// @return whether all of it went well; the code is that of the first step that failed.
uint32_t printPage(uint8_t author, uint16_t* code);

/// How long the slowest of all pages so far took from its start to its end.
std::chrono::milliseconds longestPage();

bool isDocumented(uint16_t code);

/// Makes so many new printers, all closed, that print into the folder.
/// @param shared whether they are those of all processes that say the same, and not the process's own.
/// @param patience after so many seconds without data a printer gives a page up.
void connectPrinters(unsigned count, const std::filesystem::path& folder, bool shared = false,
                     unsigned patience = 3600);

/// A folder for pages, which goes with the object.
struct PageFolder {
    PageFolder();
    ~PageFolder();

    const std::filesystem::path path;
};

class Campaign : public testing::Test {
protected:
    explicit Campaign(unsigned printers = 1, bool shared = false, unsigned patience = 3600) {
        connectPrinters(printers, folder.path, shared, patience);
    }
    ~Campaign() override { zprusb_close(); }

    /// The device mutex is free and the next call works, from any thread.
    static void expectUsable() {
        EXPECT_EQ(codeElsewhere(zprusb_status), ZPRUSB_SUCCESS);
        EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
    }

    static void addFault(const Json& fault) {
        EXPECT_EQ(zprusbsim_addFault(fault.dump().c_str(), nullptr, 0), 1u) << fault;
    }

    const PageFolder folder;
};
