#include "platform/named_mutex.h"

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "mutex_fixture.h"
#include "transfer.h"

using namespace platform;

namespace {

std::filesystem::path lockFileOf(const std::string& name) {
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        if (entry.path().filename().string().starts_with("zprusb-" + name + "-")) return entry.path();
    }
    return {};
}

}  // namespace

TEST_F(NamedMutexes, areNotOwnedByAForkedChildOfTheirOwnerNorKeptByItWhenTheOwnerIsKilled) {
    test::Pipe childLives, report;
    const pid_t owner = fork();
    if (owner == 0) {
        waitForNamedMutex(mutex, 0);
        if (fork() != 0) pause();
        const bool owns = releaseNamedMutex(mutex) || waitForNamedMutex(mutex, 10) != MutexWait::timedOut;
        Transfer answer{report.writer, {owns}}, end{childLives.reader, {0}};
        writeAll(&answer);
        childLives.closeWriter();
        readOnce(&end);  // until the test ends
        _exit(0);
    }
    Transfer owns{report.reader, {true}};
    readOnce(&owns);
    EXPECT_EQ(owns.buffer[0], false);
    EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::timedOut);
    kill(owner, SIGKILL);
    EXPECT_EQ(waitForNamedMutex(mutex, 1000), MutexWait::abandoned);
    EXPECT_TRUE(releaseNamedMutex(mutex));
    waitpid(owner, nullptr, 0);
}

TEST_F(NamedMutexes, areSharedAgainAfterTheirFileWasRemoved) {
    test::removeMutex(name);
    auto child = holdingChild();
    ASSERT_EQ(child.readLine(), "obtained");
    EXPECT_EQ(waitForNamedMutex(mutex, 10), MutexWait::timedOut);
    child.closeInput();
    EXPECT_EQ(waitForNamedMutex(mutex, forever), MutexWait::obtained);
    EXPECT_TRUE(releaseNamedMutex(mutex));
}

TEST_F(NamedMutexes, haveAFileThatIsOpenToAllUsersAndFailForAsLongAsItIsNoFile) {
    umask(0077);
    EXPECT_EQ(elsewhere(0), MutexWait::obtained);
    const std::filesystem::path file = lockFileOf(name);
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0666));
    std::filesystem::remove(file);
    for (const bool link : {true, false}) {
        if (link)
            std::filesystem::create_symlink("/dev/null", file);
        else
            std::filesystem::create_directory(file);
        for (int call = 0; call < 2; ++call) EXPECT_EQ(elsewhere(forever), MutexWait::failed);
        std::filesystem::remove(file);
    }
    EXPECT_EQ(elsewhere(0), MutexWait::obtained);
}
