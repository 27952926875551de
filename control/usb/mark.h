/// Tells the processes of this library, whose interface may be taken, from foreign programs, whose may not: who
/// holds a printer's interface has a shared lock on the printer's byte of one file. It dies with its process,
/// however that ends.
#pragma once

#include "bus.h"
#include "common/posix/descriptor.h"

namespace usb {

class Mark {
public:
    explicit Mark(const ConnectedPrinter& printer) : byte_(printer.bus * 256L + printer.address) {}

    void set();
    void remove() { file_.close(); }

    /// Whether another process has set it.
    bool isSetElsewhere() const;

private:
    long byte_;
    control::Descriptor file_;
};

}  // namespace usb
