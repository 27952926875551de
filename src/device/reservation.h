/// Reserving the selected printer for the calling thread, among all threads and processes of the machine.
#pragma once

#include "device/device_table.h"

namespace device {

constexpr uint32_t reservationLimitMilliseconds = 500;

/// A printer's named mutex, held by the calling thread until the end of this object's life. It has a use of
/// the mutex of its own: what was obtained is what is released, though the printer be unplugged or another one
/// selected in between.
class Reservation {
public:
    /// @param mutex a use of it, obtained; null when `result` is a failure.
    Reservation(platform::NamedMutex* mutex, Result result) : mutex_(mutex), result_(result) {}
    ~Reservation();
    Reservation(const Reservation&) = delete;
    Reservation& operator=(const Reservation&) = delete;
    explicit operator bool() const { return static_cast<bool>(result_); }
    Result result() const { return result_; }

    /// Leaves the printer reserved until the page ends.
    void keepForPage(PrinterObject& printer);

private:
    platform::NamedMutex* mutex_;
    const Result result_;
};

/// The first step of every operation that talks to the printer: waits at most 500 ms for it. A thread that
/// holds the API lock is without it while it waits, so that the owner can go on; what is reserved is the
/// printer that is selected after the wait.
/// @return an empty reservation on failure, with 2000 (no printer selected, or it is gone), 1500 (busy, or its
///         last owner ended without releasing it) or 2504; otherwise the code is 0.
Reservation reserve(const PrinterObject& printer);

/// The same for a device of the table, whether or not an object has selected it.
Reservation reserve(const std::atomic<uint8_t>& deviceIndex);

/// Ends a page: releases the selected printer once, or else, when the calling thread doesn't hold that, the one
/// that the object's last page start kept, which may have been unplugged since. Does nothing when the calling
/// thread holds neither.
void releasePage(PrinterObject& printer);

/// What a section that fails ends: the page on the selected printer. The one that was kept only when no printer
/// is selected any more.
void releaseSection(PrinterObject& printer);

/// Takes the printer back from the object's page if the printer was unplugged since, whichever thread the page
/// is of.
void dropLostPage(PrinterObject& printer);

}  // namespace device
