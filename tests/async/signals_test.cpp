#include "kelarc/async.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::set<std::string> idsOfThreads()
{
    std::set<std::string> threads;
    for (const auto& each : std::filesystem::directory_iterator("/proc/self/task"))
        threads.insert(each.path().filename());
    return threads;
}

/// Of those given, the signals that a thread has blocked.
std::vector<int> blockedIn(const std::string& thread, const std::vector<int>& signals)
{
    std::ifstream status("/proc/self/task/" + thread + "/status");
    std::uint64_t mask = 0;
    for (std::string word; status >> word;)
        if (word == "SigBlk:")
            status >> std::hex >> mask;
    std::vector<int> blocked;
    for (const int signal : signals)
        if ((mask >> (signal - 1) & 1U) != 0)
            blocked.push_back(signal);
    return blocked;
}

TEST(TheTimersThread, TakesNoSignalButThoseOfItsOwnInstructions)
{
    const std::set<std::string> before = idsOfThreads();
    const kelarc::async::Timer timer;
    std::vector<std::string> added;
    for (const std::string& each : idsOfThreads())
        if (before.count(each) == 0)
            added.push_back(each);
    ASSERT_EQ(added.size(), 1U);
    // A thread begins with all signals blocked, and then has what it is to have, at once.
    const std::vector<int> synchronous{SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGSYS, SIGTRAP};
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!blockedIn(added[0], synchronous).empty() && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    EXPECT_THAT(blockedIn(added[0], synchronous), IsEmpty());
    EXPECT_THAT(
        blockedIn(added[0], {SIGHUP, SIGINT, SIGTERM, SIGUSR1, SIGALRM, SIGCHLD, SIGPIPE, SIGPROF, SIGRTMIN, SIGRTMAX}),
        ElementsAre(SIGHUP, SIGINT, SIGTERM, SIGUSR1, SIGALRM, SIGCHLD, SIGPIPE, SIGPROF, SIGRTMIN, SIGRTMAX));
}

TEST(TheTimersThread, LeavesTheSignalsOfItsMakerAsTheyWere)
{
    sigset_t signals;
    sigset_t before;
    sigemptyset(&signals);
    sigaddset(&signals, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &signals, &before);
    {
        const kelarc::async::Timer timer;
    }
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, &before, &after);
    EXPECT_EQ(sigismember(&after, SIGUSR1), 1);
    EXPECT_EQ(sigismember(&after, SIGTERM), 0);
}

}  // namespace
