/// Tells the processes of this library, whose interface may be taken, from foreign programs, whose may not. One
/// file counts how often processes of this library have taken each printer's interface, and who took it last
/// has a lock on a byte of that number. The lock dies with its process, however that ends. Locks of earlier
/// numbers tell nothing: of who was robbed while it was stopped, or of a child that inherited them.
#pragma once

#include "bus.h"
#include "common/posix/descriptor.h"

namespace usb {

class Mark {
public:
    explicit Mark(const ConnectedPrinter& printer) : printer_(printer.bus * 256L + printer.address) {}

    /// After taking the interface.
    void set();
    void remove() { file_.close(); }

    /// Whether the last one who set it has it still. Not for the one who has it itself.
    bool isSetElsewhere() const;

private:
    const long printer_;
    control::Descriptor file_;
};

}  // namespace usb
