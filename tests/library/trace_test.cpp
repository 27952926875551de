#include "trace/trace.h"

#include <filesystem>
#include <fstream>
#include <regex>

#include "api/object_table.h"
#include "open_printer.h"
#include "platform/thread.h"

namespace {

namespace fs = std::filesystem;

/// Works in a folder of its own. Where drives have letters the traces are beyond it, in a folder that stays, as
/// other tests may be using it.
struct Trace : OpenPrinter {
    Trace() {
        fs::create_directories(own);
        fs::current_path(own);
        fs::create_directories(traces);
    }
    ~Trace() override {
        fs::remove(ofThread);
        fs::current_path(former);
        fs::remove_all(own);
    }

    /// What is in a file, with the times of its entries as T, and line ends as in memory. The file is removed.
    static std::string take(const fs::path& file) {
        std::stringstream text;
        text << std::ifstream(file).rdbuf();
        fs::remove(file);
        static const std::regex time(R"(\[\d{4}/\d\d/\d\d \d\d:\d\d:\d\d\.\d{3}  )");
        return std::regex_replace(text.str(), time, "[T  ");
    }

    const std::string thread = std::to_string(platform::currentThreadId());
    const std::string process = std::to_string(platform::currentProcessId());
    const fs::path former = fs::current_path();
    const fs::path own = fs::temp_directory_path() / ("zprusb-trace-" + process);
    const fs::path traces = "c:/bin";
    const fs::path ofThread = traces / ("ZprUsbLog-" + thread + "-" + process + ".txt");
    const fs::path ofAll = traces / "ZprUsbLog-ThreadDevice.txt";
    const std::string identification = "Process ID = " + process + "\nThread ID  = " + thread + "\n";
};

std::string hexOf(uint64_t handle) {
    char text[16];
    std::snprintf(text, sizeof text, "%X", static_cast<unsigned>(handle));
    return text;
}

std::string entry(const std::string& title, const std::string& dump = "") {
    return "[T  < " + title + " > ] \n" + dump + "\n";
}

}  // namespace

TEST_F(Trace, tellsEventsByTheirKind) {
    const std::string lines =
        "[T  < open > ] \n[T  < open > result = 65535 ] \n"
        "[T  < open > size = -1 result = 65535 ] \n";
    for (const int kind : {0, 1, 2, 3, 4, -1}) {
        trace::traceApiCall(kind, "open", 0xFFFFFFFF, 0xFFFF);
        trace::traceThreadDevice(kind, "open", 0xFFFFFFFF, 0xFFFF);
    }
    EXPECT_EQ(take(ofThread), identification + lines + "[T  < open > data = -1 ] \n");
    EXPECT_EQ(take(ofAll), identification + lines);
    trace::traceApiCall(7, "none", 0, 0);
    EXPECT_EQ(take(ofThread), identification);
}

TEST_F(Trace, dumpsTransfersAndHandles) {
    const api::ObjectUse object(api::findThreadSlot());
    const auto& [writer, reader] = std::tie((*object).connection.writer, (*object).connection.reader);
    const uint8_t bytes[] = {0xF0, 0xC0, 0xAB, 0x00};
    const uint32_t four = 4, none = 0;
    trace::traceReceive(reader, bytes, &four);
    trace::traceReceive(reader, bytes, &none);
    for (const int kind : {1, 2}) trace::traceReceiveHandle(reader, kind);
    trace::traceSend(writer, bytes, &four);
    for (const int kind : {1, 2, 3}) trace::traceSendHandle(writer, kind, bytes, &four);
    void (*const connectHandleOf)(int, uint8_t) = trace::traceConnectHandle;
    for (const int kind : {1, 2, 3}) connectHandleOf(kind, 0);
    trace::traceConnectHandle(1, -1);
    const std::string read = hexOf(reader.pipe), write = hexOf(writer.pipe), dump = "F0 C0 AB 00 ";
    EXPECT_EQ(take(ofThread), entry("Receive Message", dump) + entry("Receive Message") +
                                  entry("Recv Command Handle", read) + entry("Recv Command Handle") +
                                  entry("Send Command", dump) + entry("Send Command Handle", write) +
                                  entry("Send Command Handle", dump) + entry("Send Command Handle") +
                                  entry("Connect Read Handle", read) + entry("Connect Write Handle", write) +
                                  "\n" + entry("Connect Read Handle", "FFFFFFFF"));
}

TEST_F(Trace, namesCommandsByBothBytes) {
    const std::pair<Bytes, std::string> cases[] = {{{0x03, 0x40}, "Flash LED Command"},
                                                   {{0x03, 0x80}, "Get Printer Unique String Commnad"},
                                                   {{0xFF, 0xC0}, "Universal Command"},
                                                   {{0x02, 0x00}, "Get Media Information Command"},
                                                   {{0x04, 0x80}, ""},
                                                   {{0xFF, 0x40}, ""}};
    const uint32_t two = 2;
    for (const auto& [frame, name] : cases) {
        trace::traceSend({}, frame.data(), &two);
        EXPECT_TRUE(take(ofThread).starts_with("[T  < Send Command > " + name + "] \n")) << name;
    }
}

TEST_F(Trace, writesNothingWithoutItsFolder) {
    if (traces.is_absolute()) GTEST_SKIP() << "The folder may be in use.";
    fs::remove(traces);
    trace::traceApiCall(0, "open", 0, 0);
    EXPECT_FALSE(fs::exists(traces));
}
