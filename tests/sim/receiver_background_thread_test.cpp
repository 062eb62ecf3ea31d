#include "receiver/BackgroundThread.h"

#include <gtest/gtest.h>

#include <csignal>
#include <vector>

namespace {

bool isBlocked(int signal)
{
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return sigismember(&mask, signal) == 1;
}

TEST(BackgroundThread, TakesNoSignalsAndLeavesThemToTheThreadThatStartsIt)
{
    bool blocked[3] = {};
    std::thread thread = arcsim::backgroundThread([&] {
        blocked[0] = isBlocked(SIGINT);
        blocked[1] = isBlocked(SIGTERM);
        blocked[2] = isBlocked(SIGALRM);
    });
    thread.join();
    EXPECT_TRUE(blocked[0] && blocked[1] && blocked[2]);
    EXPECT_FALSE(isBlocked(SIGINT) || isBlocked(SIGTERM) || isBlocked(SIGALRM));
}

TEST(BackgroundThread, TakesTheSignalsThatItsOwnInstructionsCause)
{
    std::vector<int> blocked;
    std::thread thread = arcsim::backgroundThread([&] {
        for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT})
            if (isBlocked(signal))
                blocked.push_back(signal);
    });
    thread.join();
    EXPECT_EQ(blocked, std::vector<int>{});
}

}  // namespace
