#pragma once

#include <gtest/gtest.h>
#include <zprusb.h>

#include "fake_bus.h"

/// A test on printers that the library has open; the first one is selected.
struct OpenPrinter : testing::Test {
    explicit OpenPrinter(size_t printers = 1) : bus(printers) { EXPECT_EQ(zprusb_open(nullptr), 1u); }
    ~OpenPrinter() override { zprusb_close(); }

    FakeBus bus;
};
