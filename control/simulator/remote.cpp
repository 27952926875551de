#include "remote.h"

#include <atomic>
#include <memory>
#include <mutex>

#include "json_reader.h"
#include "local_socket.h"
#include "simulation.h"
#include "state.h"
#include "system.h"

namespace simulator {
namespace {

State show(Simulation& all, const std::string&) {
    State printers = State::array();
    for (uint32_t number = 0; const auto printer = all.printer(number); ++number) {
        const std::lock_guard lock(printer->mutex);
        printers.push_back(stateOf(*printer));
    }
    return {{"printers", printers}};
}

State set(Simulation& all, const std::string& change) {
    all.apply(parseChange(change, all.printerCount()));
    return {{"done", true}};
}

State addFault(Simulation& all, const std::string& fault) {
    all.addFault(fault);
    return {{"done", true}};
}

State clearFaults(Simulation& all, const std::string& change) {
    const std::shared_ptr<Printer> printer = all.printer(parseChange(change, all.printerCount()).printer);
    const std::lock_guard lock(printer->mutex);
    printer->faults.clear();
    return {{"done", true}};
}

struct Deed {
    std::string_view name;
    State (*act)(Simulation& all, const std::string& details);
};
constexpr Deed deeds[] = {{"show", show}, {"set", set}, {"fault", addFault}, {"clear faults", clearFaults}};

State obey(const std::string& text) {
    Json request = parseJson(text);
    const std::string name = JsonReader(request, "").text("do");
    request.erase("do");
    for (const Deed& deed : deeds) {
        if (deed.name == name) return deed.act(Simulation::instance(), request.dump());
    }
    throw ConfigurationError("do must be one of show, set, fault, clear faults");
}

/// The thread that answers, as long as somebody wants it.
class Server {
public:
    static Server& instance() {
        static auto* const server = new Server;
        return *server;
    }

    void want() {
        const std::lock_guard lock(mutex_);
        ++wishes_;
        if (listener_) return;
        listener_ = Listener::open();
        try {
            if (listener_) startThread([this] { serve(); }).detach();
        } catch (const std::system_error&) {
            listener_.reset();
        }
    }

    /// Takes no lock: a thread that is ending holds one of the system's on Windows, and other threads that end
    /// wait for that.
    void wantNoMore() {
        if (--wishes_ == 0) stopServing();
    }

private:
    void serve() {
        for (;;) {
            listener_->serve(answerRequest);
            const std::lock_guard lock(mutex_);
            listener_.reset();
            if (wishes_ > 0) listener_ = Listener::open();
            if (!listener_) return;
        }
    }

    std::atomic<size_t> wishes_ = 0;
    std::mutex mutex_;
    std::unique_ptr<Listener> listener_;  // as long as the thread lives
};

}  // namespace

Reachable::Reachable() {
    Server::instance().want();
}

Reachable::~Reachable() {
    Server::instance().wantNoMore();
}

std::string answerRequest(const std::string& request) {
    try {
        return textOf(obey(request), -1);
    } catch (const std::exception& error) {
        return textOf({{"error", std::string(error.what()) + "."}}, -1);
    }
}

}  // namespace simulator
