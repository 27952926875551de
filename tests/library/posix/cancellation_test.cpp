// Threads that are cancelled while they are in a call.
#include <pthread.h>

#include <atomic>

#include "calls.h"
#include "open_printer.h"
#include "operations.h"

namespace {

/// The entry points that are in no table of operations.
const std::vector<Operation> otherEntries{
    {CALL((zprusb_MakeObject(1), zprusb_open(code)))},
    {CALL(zprusb_ReleaseObject(code))},
    {CALL((zprusb_close(), zprusb_open(code)))},
    {CALL(zprusb_openForUpdate(0, code))},
    {CALL((listPrinters(), listLabels(), listIds(), zprusb_selectPrinter(0, code)))},
    {CALL(zprusb_startpage(nullptr, code))},
    {CALL(zprusb_endpage(code))},
    {CALL(zprusb_startUpdate(1, 2, 3, code))},
    {CALL((zprusb_loadUpdateImage(".", nullptr, nullptr, nullptr, nullptr, code), 0u))},
};

struct Caller {
    const Operation& operation;
    uint16_t code = 0xABCD;
    bool returned = false;
};

/// Makes a call on a thread of its own. What asks the thread to end may have its way afterwards.
void runCancelled(Caller& caller, void* (*body)(void* caller)) {
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, nullptr, body, &caller), 0);
    void* outcome = nullptr;
    pthread_join(thread, &outcome);
    EXPECT_EQ(outcome, PTHREAD_CANCELED) << caller.operation.name;
    EXPECT_NE(caller.code, 0xABCD) << caller.operation.name;
}

void* callWhenCancelled(void* caller) {
    auto& own = *static_cast<Caller*>(caller);
    pthread_cancel(pthread_self());
    own.operation.call(&own.code);
    own.returned = true;
    for (;;) pthread_testcancel();
}

std::atomic<pthread_t> waiting;

void* callBeforeCancelled(void* caller) {
    auto& own = *static_cast<Caller*>(caller);
    pthread_setcanceltype(PTHREAD_CANCEL_ASYNCHRONOUS, nullptr);
    waiting = pthread_self();
    own.operation.call(&own.code);
    for (;;) continue;
}

}  // namespace

TEST_F(OpenPrinter, isNotLeftByACancelledThreadBeforeItsCallHasReturned) {
    EXPECT_EQ(codeOf(zprusb_openForUpdate, 0u), ZPRUSB_SUCCESS);
    for (const auto& table : {operations, otherEntries}) {
        for (const Operation& operation : table) {
            Caller caller{operation};
            runCancelled(caller, callWhenCancelled);
            EXPECT_TRUE(caller.returned) << operation.name;
        }
    }
    bus[0].answer(getStatus, [](const Bytes&) {
        if (waiting != 0) pthread_cancel(waiting.exchange(0));
        return normalAnswer(statusPayload());
    });
    Caller caller{operations[0]};
    runCancelled(caller, callBeforeCancelled);
    EXPECT_EQ(caller.code, ZPRUSB_SUCCESS);
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
}
