#include "platform/named_mutex.h"

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

#include "mutex_fixture.h"

using namespace platform;

namespace {

std::filesystem::path lockFileOf(const std::string& name) {
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        if (entry.path().filename().string().starts_with("zprusb-" + name + "-")) return entry.path();
    }
    return {};
}

}  // namespace

TEST_F(NamedMutexes, areNotOwnedByAForkedChildOfTheirOwner) {
    ASSERT_EQ(waitForNamedMutex(mutex, 0), MutexWait::obtained);
    const pid_t child = fork();
    if (child == 0) {
        const bool owns = releaseNamedMutex(mutex);
        const bool obtains = waitForNamedMutex(mutex, 10) != MutexWait::timedOut;
        _exit(owns || obtains ? 1 : 0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(elsewhere(0), MutexWait::timedOut);
    EXPECT_TRUE(releaseNamedMutex(mutex));
}

TEST_F(NamedMutexes, areAbandonedWithTheOwnerThoughItsForkedChildLives) {
    test::Pipe childLives, ownerLives;
    const pid_t owner = fork();
    if (owner == 0) {
        waitForNamedMutex(mutex, 0);
        uint32_t count = 0;
        uint8_t byte = 0;
        if (fork() == 0) {
            writePipe(ownerLives.writer, &byte, 1, count);
            childLives.closeWriter();
            readPipe(childLives.reader, &byte, 1, count);  // until the test ends
            _exit(0);
        }
        pause();
    }
    uint32_t count = 0;
    uint8_t byte = 0;
    ASSERT_TRUE(readPipe(ownerLives.reader, &byte, 1, count));
    EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::timedOut);
    kill(owner, SIGKILL);
    EXPECT_EQ(waitForNamedMutex(mutex, 1000), MutexWait::abandoned);
    EXPECT_TRUE(releaseNamedMutex(mutex));
    waitpid(owner, nullptr, 0);
}

TEST_F(NamedMutexes, areOpenToAllUsersWhateverTheUmaskSays) {
    const mode_t former = umask(0077);
    const std::string other = name + "x";
    NamedMutex* made = openNamedMutex(other.c_str());
    umask(former);
    EXPECT_EQ(std::filesystem::status(lockFileOf(other)).permissions(), std::filesystem::perms(0666));
    closeNamedMutex(made);
    test::removeMutex(other);
}

TEST_F(NamedMutexes, areSharedAgainAfterTheirFileWasRemoved) {
    test::removeMutex(name);
    auto child = holdingChild();
    ASSERT_EQ(child.readLine(), "obtained");
    EXPECT_EQ(waitForNamedMutex(mutex, 10), MutexWait::timedOut);
    child.closeInput();
    EXPECT_EQ(waitForNamedMutex(mutex, 5000), MutexWait::obtained);
    EXPECT_TRUE(releaseNamedMutex(mutex));
}

TEST_F(NamedMutexes, areRefusedWhereSomethingElseThanAFileHasTheirName) {
    const std::filesystem::path file = lockFileOf(name);
    closeNamedMutex(mutex);
    std::filesystem::remove(file);
    std::filesystem::create_symlink("/dev/null", file);
    EXPECT_EQ(openNamedMutex(name.c_str()), nullptr);
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    EXPECT_EQ(openNamedMutex(name.c_str()), nullptr);
    std::filesystem::remove(file);
    mutex = openNamedMutex(name.c_str());
    EXPECT_NE(mutex, nullptr);
}
