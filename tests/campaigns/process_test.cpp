// Eight processes share two printers; each is killed at a random moment and started anew.
#include <algorithm>
#include <chrono>
#include <iostream>
#include <random>
#include <sstream>
#include <thread>

#include "campaign.h"
#include "support/role.h"
#include "support/system.h"

namespace {

constexpr unsigned sharedPrinters = 2;

/// The clock of all processes, in nanoseconds.
int64_t now() {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// The time in which a process had a printer for sure.
struct Possession {
    unsigned printer;
    int64_t begin, end;
};

/// Starts a process and kills it.
/// @param whenItHasOne wait until it has a printer first.
/// @return when it had which printer.
std::vector<Possession> possessionsOfOne(const std::string& folder, bool whenItHasOne,
                                         std::chrono::milliseconds life) {
    test::ChildProcess process(test::ownProgram(), {"share", folder});
    EXPECT_EQ(process.readLine(), "ready");
    const std::string first = whenItHasOne ? process.readLine() + '\n' : "";
    std::this_thread::sleep_for(life);
    const int64_t killed = now();
    process.kill();
    std::istringstream reports(first + process.readAll());
    std::vector<Possession> possessions;
    std::string line;
    while (std::getline(reports, line) && !reports.eof()) {  // a line without its end was cut by the kill
        std::istringstream words(line);
        char event = 0;
        unsigned number = 0;
        int64_t time = 0;
        words >> event >> number >> time;
        EXPECT_TRUE(event == 'S' || event == 'E') << line;
        if (event == 'S') possessions.push_back({number, time, killed});
        if (event == 'E' && !possessions.empty()) possessions.back().end = time;
    }
    return possessions;
}

/// Opens a page, on a printer of the page folder or one of its own; tells that, and ends it when its input
/// ends.
int holdPrinter(const std::string& folder, bool shared) {
    connectPrinters(1, std::u8string(folder.begin(), folder.end()), shared);
    uint16_t code = ZPRUSB_SUCCESS;
    if (zprusb_open(&code) == 0 || zprusb_checkMediaInfo(0xF1, 85, 85, &code) == 0 ||
        zprusb_startpage(nullptr, &code) == 0)
        return code;
    std::cout << "holds" << std::endl;
    std::cin.get();
    return 0;
}

const test::Role ofShared("hold shared", [](const std::string& folder) { return holdPrinter(folder, true); });
const test::Role ofOwn("hold own", [](const std::string& folder) { return holdPrinter(folder, false); });

/// Tells what it has found, and ends the page that was lost.
int replugAndSearch() {
    for (const unsigned printer : {0, 1}) zprusbsim_unplug(printer);
    for (const unsigned printer : {0, 1}) zprusbsim_plug(printer);
    const size_t found = listPrinters().size();
    zprusb_endpage(nullptr);
    return static_cast<int>(found);
}

/// Opens a page on the second printer of the page folder, and tells that. When its input ends, both printers
/// are plugged in anew, and it looks for them.
const test::Role searcher("search", [](const std::string& folder) {
    connectPrinters(2, std::u8string(folder.begin(), folder.end()), true);
    if (zprusb_open(nullptr) == 0) return 0;
    zprusb_selectPrinter(1, nullptr);
    uint16_t code = 0;
    zprusb_checkMediaInfo(0xF1, 85, 85, &code);
    std::cout << (zprusb_startpage(nullptr, &code) != 0 ? "holds" : "failed") << std::endl;
    std::cin.get();
    return replugAndSearch();
});

/// Prints on the two printers of a page folder until it is killed. It tells when it has one: "S" or "E" (start
/// or end), the printer, and the time in nanoseconds.
const test::Role sharer("share", [](const std::string& folder) -> int {
    connectPrinters(sharedPrinters, std::u8string(folder.begin(), folder.end()), true);
    uint16_t code = ZPRUSB_SUCCESS;
    if (zprusb_open(&code) == 0) return code;
    std::cout << "ready" << std::endl;
    std::mt19937 random(std::random_device{}());
    const uint8_t pixels[pageSize] = {};
    for (;;) {
        const uint8_t printer = random() % sharedPrinters;
        zprusb_selectPrinter(printer, nullptr);
        if (zprusb_checkMediaInfo(0xF1, 85, 85, &code) == 0 || zprusb_startpage(nullptr, &code) == 0) {
            if (code != ZPRUSB_PRINTER_BUSY) std::cout << "code " << code << std::endl;
            continue;
        }
        std::cout << "S " << int{printer} << ' ' << now() << std::endl;
        zprusb_write(pixels, &pageSize, &code);
        std::cout << "E " << int{printer} << ' ' << now() << std::endl;
        zprusb_endpage(&code);
        if (code != ZPRUSB_SUCCESS) std::cout << "code " << code << std::endl;
    }
});

struct Processes : testing::Test {
    std::string pathText() const {
        const std::u8string path = folder.path.u8string();
        return {path.begin(), path.end()};
    }

    PageFolder folder;
};

}  // namespace

TEST_F(Processes, haveAPrinterInCommonOnlyWhenItsSerialIsConfigured) {
    for (const bool shared : {false, true}) {
        connectPrinters(1, folder.path, shared);
        EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
        test::ChildProcess other(test::ownProgram(), {shared ? "hold shared" : "hold own", pathText()});
        EXPECT_EQ(other.readLine(), "holds");
        EXPECT_EQ(statusAtOnce(), shared ? ZPRUSB_PRINTER_BUSY : ZPRUSB_SUCCESS);
        zprusb_close();
    }
}

TEST_F(Processes, findPrintersOnWhichEachOfThemHadAPageWhenTheyWereUnplugged) {
    connectPrinters(2, folder.path, true);
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    test::ChildProcess other(test::ownProgram(), {"search", pathText()});
    EXPECT_EQ(other.readLine(), "holds");
    uint16_t code = 0;
    EXPECT_EQ(zprusb_checkMediaInfo(0xF1, 85, 85, &code) & zprusb_startpage(nullptr, &code), 1u) << code;
    other.closeInput();
    EXPECT_EQ(replugAndSearch(), 2);
    EXPECT_EQ(other.exitStatus(), 2);
    zprusb_close();
}

TEST_F(Processes, neverHaveAPrinterTogetherHoweverOftenTheyAreKilled) {
    constexpr unsigned processes = 8;
    const unsigned kills = rounds(5, 125);  // of each
    std::vector<std::vector<Possession>> ofThreads(processes);
    connectPrinters(sharedPrinters, folder.path, true);
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    zprusb_close();
    const std::string pages = pathText();
    std::jthread([&] { possessionsOfOne(pages, true, {}); }).join();
    const unsigned resources = test::resourceCount();  // the system has made now what it makes once
    {
        std::vector<std::jthread> threads;
        for (unsigned i = 0; i < processes; ++i) {
            threads.emplace_back([&, i] {
                std::mt19937 random(i);
                for (unsigned kill = 0; kill < kills; ++kill) {
                    const auto found =
                        possessionsOfOne(pages, kill % 2 == 0, std::chrono::milliseconds(random() % 60));
                    ofThreads[i].insert(ofThreads[i].end(), found.begin(), found.end());
                }
            });
        }
    }
    std::vector<Possession> all;
    for (const auto& ofThread : ofThreads) all.insert(all.end(), ofThread.begin(), ofThread.end());
    std::ranges::sort(all, {}, &Possession::begin);
    int64_t freeSince[sharedPrinters] = {};
    for (const auto& [printer, begin, end] : all) {
        ASSERT_LT(printer, sharedPrinters);
        EXPECT_GE(begin, freeSince[printer]) << "printer " << printer << " had two owners";
        freeSince[printer] = end;
    }
    EXPECT_GT(all.size(), processes);
    std::cout << all.size() << " pages, " << processes * kills << " kills\n";

    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    uint16_t code = 0;
    for (uint8_t printer = 0; printer < sharedPrinters; ++printer) {
        EXPECT_EQ(zprusb_selectPrinter(printer, nullptr), printer);
        while (statusAtOnce() == ZPRUSB_PRINTER_BUSY) continue;  // once, when its last owner was killed
        EXPECT_EQ(printPage(1, &code), 1u) << code;
    }
    zprusb_close();
    EXPECT_TRUE(test::resourcesFallTo(resources));
}
