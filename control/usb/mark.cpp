#include "mark.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace usb {
namespace {

constexpr char inFolderOfPackage[] = "/run/lock/zprusb/usb-interfaces";
constexpr char inSharedMemory[] = "/dev/shm/zprusb-usb-interfaces";
constexpr int openFlags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
constexpr mode_t readable = 0444;

// Below the other folder some systems clear the files of a user who logs out. Only the system's administrator
// can have made the package's as it has to be.
const char* markFile() {
    constexpr mode_t sharedByAll = S_IFDIR | S_ISVTX | 0777;
    struct stat status;
    const bool made =
        lstat("/run/lock/zprusb", &status) == 0 && status.st_uid == 0 && status.st_mode == sharedByAll;
    return made ? inFolderOfPackage : inSharedMemory;
}

// Everybody may read it, which is enough to lock: nobody's umask or ownership keeps another user's process from
// saying that it holds a printer.
control::Descriptor openFile() {
    const char* path = markFile();
    // Not with O_CREAT at once, which the kernel may refuse for another user's file.
    control::Descriptor file(open(path, openFlags));
    if (file.isOpen()) return file;
    file = control::Descriptor(open(path, openFlags | O_CREAT | O_EXCL, readable));
    if (!file.isOpen()) return control::Descriptor(open(path, openFlags));  // somebody else was quicker
    fchmod(file.get(), readable);
    return file;
}

struct flock lockOf(long byte, short type) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    return lock;
}

}  // namespace

void Mark::set() {
    file_ = openFile();
    struct flock lock = lockOf(byte_, F_RDLCK);
    fcntl(file_.get(), F_OFD_SETLK, &lock);
}

bool Mark::isSetElsewhere() const {
    const control::Descriptor file = openFile();
    struct flock lock = lockOf(byte_, F_WRLCK);
    return fcntl(file.get(), F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

}  // namespace usb
