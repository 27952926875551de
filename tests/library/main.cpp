// The test program starts itself again as the other process of a test; its first argument is then a role.
#include <iostream>

#include "calls.h"
#include "fake_bus.h"
#include "support/system.h"

namespace {

/// Opens a page on the first printer, and ends it when the input ends.
int holdPrinter(const char* pathStart) {
    FakeBus::pathStart = pathStart;
    FakeBus bus;
    const bool holds = zprusb_open(nullptr) == 1 && zprusb_startpage(nullptr, nullptr) == 1;
    std::cout << (holds ? "holds" : "failed") << std::endl;
    std::string line;
    std::getline(std::cin, line);
    zprusb_endpage(nullptr);
    zprusb_close();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && argv[1] == std::string("hold-printer")) return holdPrinter(argv[2]);
    testing::InitGoogleTest(&argc, argv);
    const int failures = RUN_ALL_TESTS();
    test::removeMutex(FakeBus::pathStart.substr(4));
    return failures;
}
