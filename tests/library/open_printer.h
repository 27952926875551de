#pragma once

#include <gtest/gtest.h>
#include <zprusb.h>

#include "fake_bus.h"

/// A test on so many printers that the library has open; the first one is selected.
template <size_t count>
struct OpenPrinters : testing::Test {
    OpenPrinters() { EXPECT_EQ(zprusb_open(nullptr), 1u); }
    ~OpenPrinters() override { zprusb_close(); }

    FakeBus bus{count};
};

struct OpenPrinter : OpenPrinters<1> {};
