#include "platform/named_mutex.h"

#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <vector>

#include "mutex_fixture.h"

using namespace platform;
namespace fs = std::filesystem;

namespace {

/// Empty while there is none.
fs::path fileOf(const std::string& mutex) {
    for (const char* folder : {"/run/lock/zprusb", "/dev/shm"}) {
        if (!fs::exists(folder)) continue;
        for (const auto& entry : fs::directory_iterator(folder))
            if (entry.path().filename().string().starts_with("zprusb-" + mutex + "-")) return entry;
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
        report.send({owns});
        childLives.closeWriter();
        childLives.receive();  // until the test ends
        _exit(0);
    }
    EXPECT_EQ(report.receive(), Bytes{false});
    EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::timedOut);
    kill(owner, SIGKILL);
    EXPECT_EQ(waitForNamedMutex(mutex, 1000), MutexWait::abandoned);
    EXPECT_TRUE(releaseNamedMutex(mutex));
    waitpid(owner, nullptr, 0);
}

TEST_F(NamedMutexes, areSharedAgainAfterTheirFileHasLostItsName) {
    for (const auto loseName : {+[](const fs::path&file, const fs::path&) { fs::remove(file); },
                                +[](const fs::path&file, const fs::path&to) { fs::rename(file, to); },
                                +[](const fs::path&file, const fs::path&to) {
                                    fs::create_hard_link(file, to);
                                    fs::remove(file);
                                }}) {
        EXPECT_EQ(waitForNamedMutex(mutex, forever), MutexWait::obtained);
        const fs::path file = fileOf(name), otherFile = file.parent_path() / name;
        loseName(file, otherFile);
        EXPECT_TRUE(releaseNamedMutex(mutex));
        auto child = holdingChild();
        ASSERT_EQ(child.readLine(), "obtained");
        EXPECT_EQ(waitForNamedMutex(mutex, 10), MutexWait::timedOut);
        child.closeInput();
        EXPECT_EQ(waitForNamedMutex(mutex, forever), MutexWait::obtained);
        EXPECT_TRUE(releaseNamedMutex(mutex));
        fs::remove(otherFile);
    }
}

TEST_F(NamedMutexes, letOneInAtATimeThoughWhoClosesThemRemovesTheirFile) {
    constexpr int processes = 4;
    auto* inside = static_cast<std::atomic<int>*>(
        mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    for (int process = 0; process < processes; ++process) {
        if (fork() > 0) continue;
        alarm(60);
        closeNamedMutex(mutex);
        int faults = 0;
        for (int round = 0; round < 1000; ++round) {
            NamedMutex* use = openNamedMutex(name.c_str());
            if (waitForNamedMutex(use, forever) != MutexWait::obtained || ++*inside != 1) ++faults;
            usleep(20);
            --*inside;
            releaseNamedMutex(use);
            closeNamedMutex(use);
            usleep(static_cast<useconds_t>(round % 300));  // for it to be nobody's now and then
        }
        _exit(faults > 0);
    }
    for (int process = 0; process < processes; ++process) {
        int status = 1;
        wait(&status);
        EXPECT_EQ(status, 0);
    }
    munmap(inside, sizeof *inside);
    EXPECT_TRUE(fileOf(name).empty());
}

TEST_F(NamedMutexes, areNotKeptFromOthersByAStoppedWaiterNorByAFileThatIsCutOff) {
    EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::obtained);
    const pid_t stopped = fork();
    if (stopped == 0) {
        waitForNamedMutex(mutex, forever);
        pause();
    }
    auto other = holdingChild();
    EXPECT_EQ(other.readLine(), "waits");
    fs::resize_file(fileOf(name), 0);
    kill(stopped, SIGSTOP);
    EXPECT_TRUE(releaseNamedMutex(mutex));
    EXPECT_EQ(other.readLine(), "obtained");
    other.closeInput();
    for (int round = 0; round < 16; ++round) {
        EXPECT_EQ(waitForNamedMutex(mutex, forever), MutexWait::obtained);
        releaseNamedMutex(mutex);
    }
    kill(stopped, SIGKILL);
    waitpid(stopped, nullptr, 0);
}

TEST_F(NamedMutexes, canBeUsedInAChildThatIsForkedWhileOtherThreadsUseThem) {
    std::atomic<bool> ended{false};
    std::vector<std::jthread> users;
    for (int i = 0; i < 3; ++i) {
        users.emplace_back([&] {
            while (!ended) {
                NamedMutex* use = openNamedMutex(name.c_str());
                waitForNamedMutex(use, 1);
                releaseNamedMutex(use);
                closeNamedMutex(use);
            }
        });
    }
    for (int round = 0; round < 100; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(30);
            _exit(waitForNamedMutex(mutex, forever) == MutexWait::failed || !releaseNamedMutex(mutex));
        }
        int status = 1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    ended = true;
}

TEST_F(NamedMutexes, haveAFileThatIsOpenToAllUsersAndFailForAsLongAsItCannotBeUsed) {
    umask(0077);
    rlimit files;
    getrlimit(RLIMIT_NOFILE, &files);
    const rlimit none{0, files.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_EQ(waitForNamedMutex(mutex, forever), MutexWait::failed);
    setrlimit(RLIMIT_NOFILE, &files);
    EXPECT_EQ(elsewhere(0), MutexWait::obtained);
    const fs::path file = fileOf(name);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0666));
    fs::remove(file);
    for (const bool link : {true, false}) {
        if (link)
            fs::create_symlink("/dev/null", file);
        else
            fs::create_directory(file);
        for (int call = 0; call < 2; ++call) EXPECT_EQ(elsewhere(forever), MutexWait::failed);
        fs::remove(file);
    }
    EXPECT_EQ(elsewhere(0), MutexWait::obtained);
}
