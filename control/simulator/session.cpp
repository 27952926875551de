#include "session.h"

#include <algorithm>
#include <cstdio>

#include "common/device_change.h"
#include "system.h"

namespace simulator {

using control::forever;
using control::Milliseconds;
using control::Transfer;

namespace {

bool breaksLink(const Fault& fault) {
    return fault.action == FaultAction::closePipe || fault.action == FaultAction::unplug ||
           fault.action == FaultAction::replug;
}

void alter(Answer& answer, const Fault& fault) {
    if (fault.action == FaultAction::changeKind) answer.kind = fault.kind;
    if (fault.action == FaultAction::changeStatus) answer.status = fault.status;
}

void alter(Bytes& bytes, const Fault& fault) {
    if (fault.action == FaultAction::never) bytes.clear();
    if (fault.action == FaultAction::shorten) bytes.resize(std::min<size_t>(bytes.size(), fault.bytes));
    if (fault.action == FaultAction::lengthen) bytes.resize(bytes.size() + fault.bytes);
}

std::optional<Fault> dueFault(Printer& printer, const Bytes& request) {
    if (request.size() < 2) return std::nullopt;
    return printer.faults.dueAtCommand(static_cast<uint16_t>(numberAt(request, 0, 2)));
}

// No more, when somebody has plugged it in or pulled its plug in the meantime.
bool isAbsentUntil(Printer& printer, Clock::time_point time) {
    const std::lock_guard lock(printer.mutex);
    return printer.absentUntil == time;
}

// The thread outlives the session, as hosts close a printer that is gone; it touches nothing that ends with the
// process.
void announceReturn(const std::weak_ptr<Printer>& absent, Clock::time_point time) {
    startThread([=] {
        while (Clock::now() < time) std::this_thread::sleep_until(time);  // which may end early on Windows
        const std::shared_ptr<Printer> printer = absent.lock();
        if (printer && isAbsentUntil(*printer, time)) control::notifyDeviceChange();
    }).detach();
}

}  // namespace

Session::Session(std::shared_ptr<Printer> printer)
    : printer_(std::move(printer)), thread_(startThread([this] { run(); })) {}

void Session::stop() {
    channel_.cancel();
    if (thread_.joinable()) thread_.join();
}

void Session::unplug() {
    unplugged_ = true;
    stop();
}

void Session::run() {
    try {
        std::optional<Bytes> request;
        do {
            request = input_.takeRequest(printer_->setup.dataTimeout);
        } while (request && serve(*request));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "Simulated printer %s breaks down: %s\n", printer_->setup.serial.c_str(),
                     error.what());
    }
    channel_.end();
}

// Whether the printer goes on.
bool Session::serve(const Bytes& request) {
    // Data that nobody has asked for get no more than one refusal: nobody reads it before all of them are sent.
    if (flawOf(request) && channel_.hasUnreadAnswer()) return true;
    std::unique_lock lock(printer_->mutex);
    printer_->rememberRequest(request);
    const std::optional<Fault> fault = dueFault(*printer_, request);
    if (fault && breaksLink(*fault)) {
        lock.unlock();
        breakLink(*fault);
        return false;
    }
    const bool refused = fault && fault->action == FaultAction::error;
    Reply reply = refused ? Reply{errorAnswer(fault->status)} : handleRequest(*printer_, request);
    reply.answer.status = printer_->status();
    lock.unlock();
    return send(reply.answer, fault) && (!reply.transfer || takeData(*reply.transfer));
}

bool Session::send(Answer answer, const std::optional<Fault>& fault) {
    if (fault) alter(answer, *fault);
    Bytes bytes = answer.encode();
    if (fault) {
        alter(bytes, *fault);
        if (channel_.pause(fault->duration) == Transfer::ended) return false;
    }
    return bytes.empty() || channel_.write(bytes.data(), bytes.size()) == Transfer::done;
}

bool Session::takeData(const DataTransfer& transfer) {
    std::optional<Fault> fault;
    {
        const std::lock_guard lock(printer_->mutex);
        fault = printer_->faults.dueInData();
    }
    Bytes data(transfer.length, transfer.missing);
    const Milliseconds limit = printer_->setup.dataTimeout;
    const size_t part = fault ? std::min<size_t>(*fault->imageByte, data.size()) : data.size();
    size_t arrived = input_.take({data.data(), part}, limit);
    const bool goesOn = !fault || arrived < part || interruptData(*fault);
    if (goesOn && arrived == part) arrived += input_.take(std::span(data).subspan(part), limit);
    transfer.finish(*printer_, std::move(data), arrived);
    return goesOn;
}

// Whether the printer goes on.
bool Session::interruptData(const Fault& fault) {
    if (breaksLink(fault)) {
        breakLink(fault);
        return false;
    }
    const Milliseconds duration = fault.action == FaultAction::never ? forever : fault.duration;
    return channel_.pause(duration) != Transfer::ended;
}

void Session::breakLink(const Fault& fault) {
    if (fault.action == FaultAction::closePipe) return channel_.end();
    const bool returns = fault.action == FaultAction::replug;
    const Clock::time_point back = returns ? Clock::now() + fault.duration : Clock::time_point::max();
    {
        const std::lock_guard lock(printer_->mutex);
        printer_->absentUntil = back;
        unplugged_ = true;
    }
    channel_.end();
    control::notifyDeviceChange();
    if (returns) announceReturn(printer_, back);
}

}  // namespace simulator
