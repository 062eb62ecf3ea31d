#include "thread/Thread.h"
#include "unit/QueueFixture.h"

#include <csignal>
#include <system_error>

using namespace unit;

namespace {

std::string systemName(std::thread& thread)
{
    char name[16] = {};
    pthread_getname_np(thread.native_handle(), name, sizeof name);
    return name;
}

TEST(NamedThread, HoldsNothingByDefault)
{
    interposed::takeThreadNames();
    thread::Thread none;
    EXPECT_FALSE(none.joinable());
    EXPECT_STREQ(none.threadName, "Not a thread :");
    EXPECT_TRUE(interposed::takeThreadNames().empty());
}

TEST(NamedThread, RunsTheCallableWithItsArguments)
{
    int sum = 0;
    thread::Thread adder(
        "Adder", [](int a, int b, int& out) { out = a + b; }, 2, 3, std::ref(sum));
    adder.join();
    EXPECT_EQ(sum, 5);
}

TEST(NamedThread, IsNamedAfterNameAndHandleCutToFourteenCharacters)
{
    Gate gate;
    thread::Thread thread("Nav", [&] { gate.pass(); });
    const std::string whole = "Nav : " + std::to_string(thread.native_handle());
    EXPECT_EQ(systemName(thread), whole.substr(0, 14));
    EXPECT_STREQ(thread.threadName, whole.substr(0, 14).c_str());
    gate.open();
    thread.join();
}

TEST(NamedThread, CutsALongNameToFourteenCharacters)
{
    Gate gate;
    thread::Thread thread("abcdefghijklmnopqrstuvwxyz", [&] { gate.pass(); });
    EXPECT_EQ(systemName(thread), "abcdefghijklmn");
    EXPECT_EQ(thread.threadName[14], '\0');
    EXPECT_EQ(thread.threadName[15], '\0');
    gate.open();
    thread.join();
}

TEST(NamedThread, KeepsItsShortNameWhenItChangesHands)
{
    Gate gate;
    thread::Thread holder;
    thread::Thread source("Task Queue", [&] { gate.pass(); });
    const std::string first(source.threadName);
    const pthread_t handle = source.native_handle();
    interposed::takeThreadNames();
    holder = std::move(source);
    EXPECT_FALSE(source.joinable());
    EXPECT_EQ(holder.native_handle(), handle);
    const auto names = interposed::takeThreadNames();
    ASSERT_EQ(names.size(), 1u);
    EXPECT_EQ(names[0].first, handle);
    EXPECT_EQ(names[0].second, first);
    EXPECT_EQ(systemName(holder), first);
    gate.open();
    holder.join();
}

TEST(NamedThread, TakesTheOtherNameFollowedByZeroWhenItHeldNothing)
{
    thread::Thread holder;
    thread::Thread source;
    std::snprintf(source.threadName, sizeof source.threadName, "short");
    holder = std::move(source);
    EXPECT_STREQ(holder.threadName, "short : 0");
}

TEST(NamedThread, IsNotNamedThroughANullHandleWhenItTakesOverNothing)
{
    interposed::takeThreadNames();
    thread::Thread holder;
    thread::Thread source;
    holder = std::move(source);
    EXPECT_FALSE(holder.joinable());
    EXPECT_STREQ(holder.threadName, "Not a thread :");
    EXPECT_TRUE(interposed::takeThreadNames().empty());
}

TEST(NamedThread, NamesTheQueuesWorkerTwiceWithTheSameText)
{
    interposed::takeThreadNames();
    Queue queue("Task Queue");
    queue.start();
    const auto names = interposed::takeThreadNames();
    const pthread_t handle = queue.worker.native_handle();
    const std::string expected = "Task Queue : " + std::to_string(handle).substr(0, 1);
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[0], std::make_pair(handle, expected));
    EXPECT_EQ(names[1], std::make_pair(handle, expected));
    EXPECT_EQ(systemName(queue.worker), expected);
}

sigset_t ownMask()
{
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return mask;
}

std::vector<int> membersOf(const sigset_t& mask)
{
    std::vector<int> members;
    for (int signal = 1; signal <= SIGRTMAX; ++signal)
        if (sigismember(&mask, signal) == 1)
            members.push_back(signal);
    return members;
}

TEST(NamedThread, TakesNoSignalsButThoseThatItsOwnInstructionsCause)
{
    const std::vector<int> before = membersOf(ownMask());
    sigset_t mask;
    thread::Thread thread("Deaf", [&] { mask = ownMask(); });
    thread.join();
    for (const int signal :
         {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGCHLD, SIGPIPE, SIGUSR1, SIGUSR2, SIGWINCH, SIGIO, SIGPROF,
          SIGVTALRM, SIGTSTP, SIGRTMIN, SIGRTMIN + 8})  // the last ones are an emulator's
        EXPECT_EQ(sigismember(&mask, signal), 1) << signal;
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT})
        EXPECT_EQ(sigismember(&mask, signal), 0) << signal;
    EXPECT_EQ(membersOf(ownMask()), before);
}

TEST(NamedThread, LeavesItsCreatorsSignalsAsTheyWereAlsoWhenItIsRefused)
{
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, SIGUSR2);
    sigset_t original;
    pthread_sigmask(SIG_BLOCK, &one, &original);
    const std::vector<int> before = membersOf(ownMask());
    interposed::refuseThreads(true);
    EXPECT_THROW(thread::Thread("Refused", [] {}), std::system_error);
    interposed::refuseThreads(false);
    EXPECT_EQ(membersOf(ownMask()), before);
    pthread_sigmask(SIG_SETMASK, &original, nullptr);
    EXPECT_THAT(before, testing::Contains(SIGUSR2));
}

TEST(NamedThreadDeathTest, EndsTheProcessWhenDestroyedWhileJoinable)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH({ thread::Thread lost("Lost", [] {}); }, "terminate called");
}

TEST(NamedThreadDeathTest, EndsTheProcessWhenOverwrittenWhileJoinable)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            thread::Thread kept("Kept", [] {});
            kept = thread::Thread("New", [] {});
        },
        "terminate called");
}

TEST(NamedThread, DestroysThroughABasePointerOfItsOwnType)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<thread::Thread>);
    EXPECT_TRUE((std::is_base_of_v<std::thread, thread::Thread>));
    EXPECT_EQ(sizeof(thread::Thread::threadName), 16u);
}

}  // namespace
