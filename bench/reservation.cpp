// The reservation of a printer, against a bare lock of the same kind: the kernel's, on a file.
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <optional>
#include <random>
#include <thread>

#include "api/object_table.h"
#include "comparisons.h"
#include "device/reservation.h"
#include "printers.h"

namespace bench {

using namespace std::chrono_literals;

namespace {

/// Something that one process at a time can hold.
class Lock {
public:
    virtual ~Lock() = default;
    virtual void obtain() = 0;
    virtual void release() = 0;
};

class BareLock : public Lock {
public:
    explicit BareLock(const char* path) : file_(open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        require(file_ >= 0, "to open a lock file");
    }
    ~BareLock() override { close(file_); }
    void obtain() override { set(F_WRLCK); }
    void release() override { set(F_UNLCK); }

private:
    void set(short type) const {
        struct flock range {};
        range.l_type = type;
        range.l_whence = SEEK_SET;
        range.l_len = 1;
        require(fcntl(file_, F_OFD_SETLKW, &range) == 0, "F_OFD_SETLKW");
    }
    const int file_;
};

class PrinterLock : public Lock {
public:
    void obtain() override {
        device::PrinterObject& printer = *object_;
        device::Reservation reservation = device::reserve(printer);
        require(static_cast<bool>(reservation), "reserve");
        reservation.keepForPage(printer);
    }
    void release() override { device::releasePage(*object_); }

private:
    Printers printers_{1};
    OpenLibrary library_;
    api::ObjectUse object_{api::findThreadSlot()};
};

double secondsSinceStart() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Another process, which obtains the lock whenever it is told to, and tells when it has it.
template <class AnyLock>
class Neighbour {
public:
    template <class... Arguments>
    explicit Neighbour(const Arguments&... arguments) {
        require(pipe2(orders_, O_CLOEXEC) == 0 && pipe2(reports_, O_CLOEXEC) == 0, "pipe2");
        process_ = fork();
        require(process_ >= 0, "fork");
        if (process_ > 0) return;
        close(orders_[1]);
        AnyLock lock(arguments...);
        obey(lock);
        _exit(0);
    }
    ~Neighbour() {
        for (const int end : {orders_[0], orders_[1], reports_[0], reports_[1]}) close(end);
        waitpid(process_, nullptr, 0);
    }
    Neighbour(const Neighbour&) = delete;
    Neighbour& operator=(const Neighbour&) = delete;

    void obtainOnce() { obtainAgainAndAgain(std::chrono::milliseconds(0)); }
    /// It holds the lock that long, releases it and obtains it at once, until it is to obtain it once.
    void obtainAgainAndAgain(std::chrono::milliseconds hold) {
        const auto order = static_cast<unsigned char>(hold.count());
        require(write(orders_[1], &order, 1) == 1, "to order");
    }
    double momentObtained() {
        double moment = 0;
        require(read(reports_[0], &moment, sizeof moment) == sizeof moment, "to read a report");
        return moment;
    }

private:
    void obey(Lock& lock) const {
        unsigned char milliseconds;
        while (read(orders_[0], &milliseconds, 1) == 1) {
            lock.obtain();
            const double moment = secondsSinceStart();
            if (milliseconds == 0) lock.release();
            require(write(reports_[1], &moment, sizeof moment) == sizeof moment, "to report");
            if (milliseconds > 0) retake(lock, std::chrono::milliseconds(milliseconds));
        }
    }
    void retake(Lock& lock, std::chrono::milliseconds hold) const {
        pollfd order{orders_[0], POLLIN, 0};
        for (;;) {
            std::this_thread::sleep_for(hold);
            lock.release();
            if (poll(&order, 1, 0) != 0) return;
            lock.obtain();
        }
    }

    int orders_[2], reports_[2];
    pid_t process_;
};

/// From this process's release to the neighbour's holding.
template <class AnyLock>
double handOver(Lock& lock, Neighbour<AnyLock>& neighbour) {
    static std::mt19937 random(1);
    lock.obtain();
    neighbour.obtainOnce();
    // Long enough for it to wait, and not in step with it.
    std::this_thread::sleep_for(std::chrono::microseconds(std::uniform_int_distribution(5000, 15000)(random)));
    const double start = secondsSinceStart();
    lock.release();
    return neighbour.momentObtained() - start;
}

/// How long this process waits beside a neighbour that has just obtained the lock and wants it all the time.
template <class AnyLock>
double waitBeside(Lock& lock, Neighbour<AnyLock>& neighbour, std::chrono::milliseconds hold) {
    neighbour.obtainAgainAndAgain(hold);
    neighbour.momentObtained();
    const double waited = secondsOf([&] { lock.obtain(); });
    lock.release();
    neighbour.obtainOnce();
    neighbour.momentObtained();
    return waited;
}

double obtainAndRelease(Lock& lock) {
    constexpr int batch = 200;
    return secondsOf([&] {
               for (int i = 0; i < batch; ++i) {
                   lock.obtain();
                   lock.release();
               }
           }) /
           batch;
}

}  // namespace

void compareReservation(const Report& report) {
    char path[] = "/dev/shm/zprusb-bench-XXXXXX";
    close(mkstemp(path));
    Neighbour<BareLock> bareNeighbour(path);
    Neighbour<PrinterLock> printerNeighbour;
    BareLock bare(path);
    PrinterLock printer;
    report({.name = "a free printer, reserved and released",
            .limit = "a bare lock of a file",
            .library = [&] { return obtainAndRelease(printer); },
            .base = [&] { return obtainAndRelease(bare); },
            .rounds = 501});
    report({.name = "a printer handed to another process",
            .limit = "a bare lock of a file",
            .library = [&] { return handOver(printer, printerNeighbour); },
            .base = [&] { return handOver(bare, bareNeighbour); },
            .rounds = 101});
    for (const std::chrono::milliseconds hold : {10ms, 200ms}) {
        report({.name = "a printer that another process retakes",
                .limit = "one hold of it",
                .library = [&] { return waitBeside(printer, printerNeighbour, hold); },
                .base = [&] { return secondsOf([&] { std::this_thread::sleep_for(hold); }); },
                .goal = 1 + 50ms / std::chrono::duration<double>(hold),
                .rounds = 21});
    }
    unlink(path);
}

}  // namespace bench
