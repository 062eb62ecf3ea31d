#include "support/KelArcTest.h"

#include <csignal>
#include <optional>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using ::testing::ElementsAre;

class Process : public support::KelArcTest
{
protected:
    /// Runs on the worker, in an answer, and waits for the end of that.
    template <typename Action>
    void onTheWorker(Action action)
    {
        kelarc().resetAGNSS([&](int) { action(); });
        settle();
    }

    /// Waits for a child's end: its exit code, or -1 when it ended otherwise.
    static int exitCodeOf(pid_t child)
    {
        int status = 0;
        return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

bool isBlockedHere(int signal)
{
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return sigismember(&mask, signal) == 1;
}

// The default of this signal ends the process, which any thread that takes it would bring about.
TEST_F(Process, GetsItsSignalsWhereItWaitsForThemAlthoughTheObjectIsOlder)
{
    open();
    sigset_t awaited;
    sigemptyset(&awaited);
    sigaddset(&awaited, SIGTERM);
    sigset_t before;
    pthread_sigmask(SIG_BLOCK, &awaited, &before);
    for (int turn = 0; turn < 100; ++turn) {
        ASSERT_EQ(kill(getpid(), SIGTERM), 0);
        const timespec limit{30, 0};
        ASSERT_EQ(sigtimedwait(&awaited, nullptr, &limit), SIGTERM);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_TRUE(kelarc().isOpen());
}

TEST_F(Process, HasAWorkerThatTakesOnlyTheSignalsThatItCauses)
{
    bool others = false;
    bool own = true;
    onTheWorker([&] {
        others = isBlockedHere(SIGTERM) && isBlockedHere(SIGINT) && isBlockedHere(SIGCHLD);
        own = isBlockedHere(SIGSEGV) || isBlockedHere(SIGABRT);
    });
    EXPECT_TRUE(others);
    EXPECT_FALSE(own);
    EXPECT_FALSE(isBlockedHere(SIGTERM));
}

TEST_F(Process, PassesTheWorkersMaskToWhatACallbackStarts)
{
    pid_t child = 0;
    onTheWorker([&] {
        child = fork();
        if (child == 0)
            _exit(isBlockedHere(SIGTERM) ? 17 : 18);
    });
    EXPECT_EQ(exitCodeOf(child), 17);
}

TEST_F(Process, GoesOnWhenAChildEndsOrBecomesAnotherProgram)
{
    open();
    {
        const support::Gate gate = holdWorker();  // the worker is in a body while the process is copied
        const pid_t ending = fork();
        if (ending == 0)
            _exit(17);
        EXPECT_EQ(exitCodeOf(ending), 17);
        const pid_t executing = fork();
        if (executing == 0) {
            execl("/bin/sh", "sh", "-c", "exit 18", static_cast<char*>(nullptr));
            _exit(19);
        }
        EXPECT_EQ(exitCodeOf(executing), 18);
        kelarc().ATcmd("AT", answer());
    }
    settle();
    EXPECT_THAT(answers(), ElementsAre("answer(0, '<UNKNOWN>')"));
    EXPECT_TRUE(kelarc().isOpen());
}

TEST_F(Process, ChoosesTheWorkersStackByTheDefaultOfNewThreads)
{
    pthread_attr_t before;
    ASSERT_EQ(pthread_getattr_default_np(&before), 0);
    pthread_attr_t smaller;
    ASSERT_EQ(pthread_getattr_default_np(&smaller), 0);
    constexpr std::size_t kStack = 512 * 1024;
    ASSERT_EQ(pthread_attr_setstacksize(&smaller, kStack), 0);
    ASSERT_EQ(pthread_setattr_default_np(&smaller), 0);
    restart();
    ASSERT_EQ(pthread_setattr_default_np(&before), 0);  // read when the thread is made, and not again
    std::size_t size = 0;
    onTheWorker([&] {
        pthread_attr_t own;
        pthread_getattr_np(pthread_self(), &own);
        pthread_attr_getstacksize(&own, &size);
        pthread_attr_destroy(&own);
    });
    EXPECT_GE(size, kStack / 2);  // the guard page may be taken out of it
    EXPECT_LE(size, 2 * kStack);
    pthread_attr_destroy(&smaller);
    pthread_attr_destroy(&before);
}

}  // namespace
