// Requests and their answers, against the same bytes moved by one fresh thread for the write and one for the
// read: the least that there is to it when no printer may hold up its caller.
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "comparisons.h"
#include "printers.h"

namespace bench {

namespace {

constexpr int batch = 20;                               // calls that are timed together
constexpr size_t statusRequest = 4, printRequest = 18;  // bytes

struct Transfer {
    int pipe;
    size_t size;
    uint8_t bytes[512];
    ssize_t count;
};

void* writeOnce(void* argument) {
    auto* transfer = static_cast<Transfer*>(argument);
    transfer->count = write(transfer->pipe, transfer->bytes, transfer->size);
    return nullptr;
}

void* readOnce(void* argument) {
    auto* transfer = static_cast<Transfer*>(argument);
    transfer->count = read(transfer->pipe, transfer->bytes, sizeof transfer->bytes);
    return nullptr;
}

void runOnThread(void* (*body)(void*), Transfer& transfer) {
    pthread_t thread;
    require(pthread_create(&thread, nullptr, body, &transfer) == 0 && pthread_join(thread, nullptr) == 0 &&
                transfer.count > 0,
            "a transfer");
}

void exchangeBare(const Printer& printer, size_t requestSize) {
    Transfer transfer{printer.requests[1], requestSize, {}, 0};
    runOnThread(writeOnce, transfer);
    transfer.pipe = printer.answers[0];
    runOnThread(readOnce, transfer);
}

void exchangePageStart(const Printer& printer) {
    for (int i = 0; i < 4; ++i) exchangeBare(printer, statusRequest);
    exchangeBare(printer, printRequest);
}

void preparePageStart(const Printer& printer) {
    for (int i = 0; i < 4; ++i) printer.prepareStatus();
    printer.prepareAcknowledgement();
}

/// Times a batch of calls that ask the printer something.
template <class Prepare, class Call>
double secondsOfBatch(const Printer& printer, int calls, const Prepare& prepare, const Call& call) {
    for (int i = 0; i < calls; ++i) prepare();
    const double seconds = secondsOf([&] {
        for (int i = 0; i < calls; ++i) call();
    });
    printer.forgetRequests();
    return seconds / calls;
}

void compareOnePrinter(const Report& report) {
    Printers printers(1);
    Printer& printer = printers[0];
    const OpenLibrary library;
    const auto prepareStatus = [&] { printer.prepareStatus(); };
    report({.name = "one status exchange",
            .limit = "a fresh thread for each transfer",
            .library =
                [&] {
                    return secondsOfBatch(printer, batch, prepareStatus,
                                          [] { require(zprusb_status(nullptr) == 1, "zprusb_status"); });
                },
            .base =
                [&] {
                    return secondsOfBatch(printer, batch, prepareStatus,
                                          [&] { exchangeBare(printer, statusRequest); });
                },
            .goal = 1.15,
            .rounds = 1001});
    const auto preparePage = [&] { preparePageStart(printer); };
    constexpr int pages = batch / 5;
    report(
        {.name = "a page start, 5 exchanges",
         .limit = "a fresh thread for each transfer",
         .library =
             [&] {
                 return secondsOfBatch(printer, pages, preparePage, [] {
                     require(zprusb_startpage(nullptr, nullptr) == 1, "zprusb_startpage");
                     zprusb_endpage(nullptr);
                 });
             },
         .base =
             [&] { return secondsOfBatch(printer, pages, preparePage, [&] { exchangePageStart(printer); }); },
         .goal = 1.10,
         .rounds = 1001});
}

void compareAllPrinters(const Report& report) {
    Printers printers(ZPRUSB_MAX_PRINTERS);
    const OpenLibrary library;
    uint8_t list[ZPRUSB_MAX_PRINTERS];
    uint16_t codes[ZPRUSB_MAX_PRINTERS];
    require(zprusb_listupPrinter(list) == printers.count(), "zprusb_listupPrinter");
    const auto seconds = [&](const auto& call) {
        for (const uint8_t number : list) printers[number].prepareStatus();
        const double time = secondsOf(call);
        for (const uint8_t number : list) printers[number].forgetRequests();
        return time;
    };
    report({.name = "zprusb_statusAll, 128 printers",
            .limit = "a fresh thread for each transfer",
            .library =
                [&] {
                    return seconds([&] {
                        require(zprusb_statusAll(list, codes) == 1 &&
                                    std::ranges::count(codes, ZPRUSB_SUCCESS) == ZPRUSB_MAX_PRINTERS,
                                "zprusb_statusAll");
                    });
                },
            .base =
                [&] {
                    return seconds([&] {
                        for (const uint8_t number : list) exchangeBare(printers[number], statusRequest);
                    });
                }});
}

}  // namespace

void compareExchanges(const Report& report) {
    compareOnePrinter(report);
    compareAllPrinters(report);
}

}  // namespace bench
