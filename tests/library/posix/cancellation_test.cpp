// Threads that are cancelled while they are in a call.
#include <pthread.h>

#include <future>

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

struct Cancelled {
    const Operation& operation;
    uint16_t code = 0xABCD;
    bool returned = false;
};

/// Runs a call on a thread that is asked to end before it begins. The request may be followed afterwards.
void runCancelled(Cancelled& cancelled) {
    const auto body = [](void* argument) -> void* {
        auto& own = *static_cast<Cancelled*>(argument);
        pthread_cancel(pthread_self());
        own.operation.call(&own.code);
        own.returned = true;
        pthread_testcancel();
        return nullptr;
    };
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, nullptr, body, &cancelled), 0);
    void* outcome = nullptr;
    pthread_join(thread, &outcome);
    EXPECT_EQ(outcome, PTHREAD_CANCELED) << cancelled.operation.name;
}

}  // namespace

TEST_F(OpenPrinter, isNotLeftByAThreadThatIsCancelledBeforeItsCallHasReturned) {
    EXPECT_EQ(codeOf(zprusb_openForUpdate, 0u), ZPRUSB_SUCCESS);
    for (const auto& table : {operations, otherEntries}) {
        for (const Operation& operation : table) {
            Cancelled cancelled{operation};
            runCancelled(cancelled);
            EXPECT_TRUE(cancelled.returned) << operation.name;
            EXPECT_NE(cancelled.code, 0xABCD) << operation.name;
        }
    }
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
}

TEST_F(OpenPrinter, isNotLeftByAThreadThatMayBeCancelledAtAnyInstruction) {
    std::promise<void> answer;
    bus[0].answer(getStatus, [&](const Bytes&) {
        answer.get_future().wait();
        return normalAnswer(statusPayload());
    });
    uint16_t code = 0xABCD;
    const auto body = [](void* argument) -> void* {
        pthread_setcanceltype(PTHREAD_CANCEL_ASYNCHRONOUS, nullptr);
        zprusb_status(static_cast<uint16_t*>(argument));
        for (;;) continue;
    };
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, nullptr, body, &code), 0);
    EXPECT_EQ(bus[0].pieces(1).size(), 1u);
    pthread_cancel(thread);
    answer.set_value();
    pthread_join(thread, nullptr);
    EXPECT_EQ(code, ZPRUSB_SUCCESS);
    bus[0].answer(getStatus, normalAnswer(statusPayload()));
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
}
