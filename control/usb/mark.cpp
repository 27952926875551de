#include "mark.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>

namespace usb {
namespace {

constexpr char inFolderOfPackage[] = "/run/lock/zprusb/usb-interfaces";
constexpr char inSharedMemory[] = "/dev/shm/zprusb-usb-interfaces";
constexpr int openFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
constexpr mode_t sharedByUsers = 0666;

// Below the other folder some systems clear the files of a user who logs out. Only the system's administrator
// can have made the package's as it has to be.
const char* markFile() {
    constexpr mode_t sharedByAll = S_IFDIR | S_ISVTX | 0777;
    struct stat status;
    const bool made =
        lstat("/run/lock/zprusb", &status) == 0 && status.st_uid == 0 && status.st_mode == sharedByAll;
    return made ? inFolderOfPackage : inSharedMemory;
}

// Whatever the umask of the one who makes it. Who writes nonsense into it makes programs wait for each other,
// or take the interface from a foreign one, as anybody who may use the printer can.
control::Descriptor openFile() {
    const char* path = markFile();
    // Not with O_CREAT at once, which the kernel may refuse for another user's file.
    control::Descriptor file(open(path, openFlags));
    if (file.isOpen()) return file;
    file = control::Descriptor(open(path, openFlags | O_CREAT | O_EXCL, sharedByUsers));
    if (!file.isOpen()) return control::Descriptor(open(path, openFlags));  // somebody else was quicker
    fchmod(file.get(), sharedByUsers);
    return file;
}

off_t placeOfCount(long printer) {
    return printer * off_t{sizeof(uint32_t)};
}

uint32_t readCount(const control::Descriptor& file, long printer) {
    uint32_t count = 0;
    return pread(file.get(), &count, sizeof count, placeOfCount(printer)) == sizeof count ? count : 0;
}

struct flock lockOf(long printer, uint32_t count, short type) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = (int64_t{printer} + 1) * (int64_t{UINT32_MAX} + 1) + count;  // behind all counts
    lock.l_len = 1;
    return lock;
}

}  // namespace

void Mark::set() {
    file_ = openFile();
    const uint32_t count = readCount(file_, printer_) + 1;
    struct flock lock = lockOf(printer_, count, F_RDLCK);
    fcntl(file_.get(), F_OFD_SETLK, &lock);
    (void)!pwrite(file_.get(), &count, sizeof count, placeOfCount(printer_));
}

bool Mark::isSetElsewhere() const {
    const control::Descriptor file = openFile();
    struct flock lock = lockOf(printer_, readCount(file, printer_), F_WRLCK);
    return fcntl(file.get(), F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

}  // namespace usb
