// Defects of places that only the system's administrator can make, planted below a folder.
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "posix/places.h"
#include "workshop.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class Places : public Workshop {
protected:
    void makeFolder(const std::string& name, mode_t mode) const {
        fs::create_directories(folder() / name);
        chmod((folder() / name).c_str(), mode);
    }
    void makeFile(const std::string& name, const std::string& content) const {
        fs::create_directories((folder() / name).parent_path());
        std::ofstream(folder() / name) << content << '\n';
    }
};

void expectSights(const std::vector<tool::Sight>& sights, const std::vector<std::string>& ends) {
    ASSERT_EQ(sights.size(), ends.size());
    for (size_t i = 0; i < ends.size(); ++i) {
        EXPECT_TRUE(contains(sights[i].found + "\n", ends[i] + "\n"));
        EXPECT_EQ(sights[i].remedy.empty(), ends[i].find(' ') == std::string::npos) << sights[i].found;
    }
}

TEST_F(Places, OfLockFilesMustBeOpenToAllUsers) {
    const std::string notUsed =
        " is not used: it is no folder of root's with mode 1777, and logouts may clear the other one";
    expectSights(tool::lockFoldersBelow(folder()), {"/dev/shm is missing"});
    makeFile("dev/shm", "");
    expectSights(tool::lockFoldersBelow(folder()), {"/dev/shm is no folder"});
    fs::remove(folder() / "dev/shm");
    makeFolder("dev/shm", 0755);
    expectSights(tool::lockFoldersBelow(folder()), {"/dev/shm can't be written by all users"});
    makeFolder("dev/shm", 01777);
    expectSights(tool::lockFoldersBelow(folder()), {"/dev/shm"});
    makeFolder("run/lock/zprusb", 0755);
    expectSights(tool::lockFoldersBelow(folder()), {notUsed, "/dev/shm"});
    makeFolder("run/lock/zprusb", 01777);
    if (geteuid() != 0) return;
    expectSights(tool::lockFoldersBelow(folder()), {"/run/lock/zprusb"});
    ASSERT_EQ(chown((folder() / "run/lock/zprusb").c_str(), 1234, 1234), 0);
    expectSights(tool::lockFoldersBelow(folder()), {notUsed, "/dev/shm"});
}

TEST_F(Places, OfPrintersMustBeThereForThisUser) {
    const std::string device = "sys/bus/usb/devices/1-2/";
    makeFile(device + "idVendor", "5a2c");
    makeFile(device + "idProduct", "0012");
    makeFile(device + "busnum", "1");
    makeFile(device + "devnum", "34");
    makeFile("sys/bus/usb/devices/1-3/idVendor", "1234");
    expectSights(tool::usbDevicesBelow(folder()),
                 {"/dev/bus/usb/001/034 is missing, though the device is connected"});
    makeFile("dev/bus/usb/001/034", "");
    expectSights(tool::usbDevicesBelow(folder()), {"/dev/bus/usb/001/034"});
    chmod((folder() / "dev/bus/usb/001/034").c_str(), 0);
    const uid_t user = geteuid();
    ASSERT_EQ(seteuid(user == 0 ? 65534 : user), 0);
    expectSights(tool::usbDevicesBelow(folder()), {"/dev/bus/usb/001/034 may not be opened by this user"});
    EXPECT_TRUE(
        contains(tool::fileOfControlLibrary(folder() / "dev/bus/usb/001/034").found, "may not be read"));
    EXPECT_EQ(seteuid(user), 0);
}

}  // namespace
}  // namespace test
