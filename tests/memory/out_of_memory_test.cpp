#include "kelarc/KelArc.h"
#include "memory/ClientLibrary.h"
#include "memory/Memory.h"
#include "memory/Operations.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <thread>

using kelarc::KelArc;
using kelarc::NOTIFY_ID;

namespace {

template <typename Condition>
bool eventually(Condition condition)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

std::atomic<int> g_lines{0};

void countLine(int, const char*)
{
    ++g_lines;
}

/// An open object on the executable's own client library.
class OutOfMemory : public testing::Test
{
protected:
    OutOfMemory()
    {
        client::reset();
        g_lines = 0;
        modem.emplace(countLine);
    }

    void open()
    {
        std::atomic<int> opened{0};
        modem->open([&opened](int) { ++opened; });
        ASSERT_TRUE(eventually([&] { return opened == 1; }));
    }

    /// The code of a request that needs an open object: 32 while it is inactive.
    int ask()
    {
        std::atomic<int> answer{-1};
        modem->setModuleSetting("Key", "\"1\"", [&answer](int code, bool) { answer = code; });
        EXPECT_TRUE(eventually([&] { return answer != -1; }));
        return answer;
    }

    void settle()
    {
        std::atomic<bool> last{false};  // requested after all others, so answered after them
        modem->resetAGNSS([&last](int) { last = true; });
        EXPECT_TRUE(eventually([&] { return last.load(); }));
    }

    std::optional<KelArc> modem;
};

class OutOfMemoryOperation : public OutOfMemory, public testing::WithParamInterface<Operation>
{
};

TEST_P(OutOfMemoryOperation, HasDoneNothingAndLeavesTheObjectAsItWas)
{
    open();
    settle();
    std::atomic<int> answers{0};
    const int callsBefore = client::calls;
    const int linesBefore = g_lines;
    int asked = 0;
    const int failures = memory::failEveryAllocation([&] { GetParam().request(*modem, answers); },
                                                     [&] {
                                                         EXPECT_EQ(modem->getPendingTasks(), 0u);
                                                         EXPECT_EQ(client::calls, callsBefore + asked);
                                                         EXPECT_EQ(g_lines, linesBefore + asked);
                                                         EXPECT_EQ(ask(), 0);
                                                         ++asked;
                                                         EXPECT_TRUE(modem->isOpen());
                                                     });
    EXPECT_GT(failures, 0);
    settle();
    EXPECT_EQ(answers, GetParam().answersOnSuccess);
    EXPECT_EQ(ask(), 0);
}

TEST_P(OutOfMemoryOperation, IsAnsweredByAWorkerWithoutMemoryWhereTheTextIsShort)
{
    static constexpr const char* kText = "15 characters..";
    open();
    settle();
    client::text = kText;
    client::worksWithoutMemory = true;
    std::atomic<int> answers{0};
    GetParam().request(*modem, answers);
    settle();
    EXPECT_EQ(answers, GetParam().answersOnSuccess);
}

INSTANTIATE_TEST_SUITE_P(Every, OutOfMemoryOperation, testing::ValuesIn(operations()),
                         [](const testing::TestParamInfo<Operation>& row) { return std::string(row.param.name); });

TEST_F(OutOfMemory, OpenQueuesBothItsTasksOrNone)
{
    std::atomic<int> opened{0};
    const int failures = memory::failEveryAllocation([&] { modem->open([&opened](int) { ++opened; }); },
                                                     [&] {
                                                         EXPECT_EQ(modem->getPendingTasks(), 0u);
                                                         EXPECT_EQ(client::calls, 0);
                                                     });
    EXPECT_GT(failures, 0);
    EXPECT_TRUE(eventually([&] { return opened == 1; }));
    EXPECT_EQ(client::calls, 2);
}

TEST_F(OutOfMemory, CloseLeavesTheObjectOpenAndActive)
{
    open();
    std::atomic<int> closed{0};
    const int failures = memory::failEveryAllocation([&] { modem->close([&closed](int) { ++closed; }); },
                                                     [&] {
                                                         EXPECT_TRUE(modem->isOpen());
                                                         EXPECT_EQ(ask(), 0);
                                                     });
    EXPECT_GT(failures, 0);
    EXPECT_TRUE(eventually([&] { return closed == 1; }));
    EXPECT_FALSE(modem->isOpen());
}

/// Keeps state that does not fit into a std::function.
struct Listener
{
    std::atomic<int>* heard;
    std::array<char, 200> state;
    template <typename... Values>
    void operator()(Values&&...) const
    {
        ++*heard;
    }
};

TEST_F(OutOfMemory, ReplacingACallbackFailsWithTheOldOneStillInPlace)
{
    open();
    std::atomic<int> old{0};
    std::atomic<int> fresh{0};
    modem->setNotificationCB(Listener{&old, {}});
    modem->setLstaGnssStatus(kelarc::lsta::TECH::GPS, true, 1, Listener{&old, {}}, [](int) {});
    settle();
    LstaInfo info{};
    info.indicator = 1000;
    int expected = 0;
    std::function<void(NOTIFY_ID, void*, int)> events = Listener{&fresh, {}};
    memory::failEveryAllocation([&] { modem->setNotificationCB(std::function<void(NOTIFY_ID, void*, int)>(events)); },
                                [&] {
                                    client::handler.load()(22, nullptr, 0);
                                    EXPECT_EQ(old, ++expected);
                                });
    std::function<void(kelarc::lsta::TYPE, int, double)> lsta = Listener{&fresh, {}};
    memory::failEveryAllocation(
        [&] {
            modem->setLstaGnssStatus(kelarc::lsta::TECH::GPS, true, 1,
                                     std::function<void(kelarc::lsta::TYPE, int, double)>(lsta), [](int) {});
        },
        [&] {
            client::handler.load()(34, &info, sizeof info);
            EXPECT_EQ(old, ++expected);
        });
    EXPECT_GT(expected, 4);
    settle();
    client::handler.load()(22, nullptr, 0);
    client::handler.load()(34, &info, sizeof info);
    EXPECT_EQ(fresh, 2);
    EXPECT_EQ(old, expected);
}

TEST_F(OutOfMemory, EventsNeedNoMemory)
{
    open();
    std::atomic<int> heard{0};
    modem->setNotificationCB(Listener{&heard, {}});
    modem->setLstaGnssStatus(kelarc::lsta::TECH::GPS, true, 1, Listener{&heard, {}}, [](int) {});
    settle();
    LstaInfo gps{};
    gps.indicator = 1000;
    LstaInfo galileo{};
    galileo.indicator = 1003;
    const int linesBefore = g_lines;
    memory::leave(0);
    client::handler.load()(22, nullptr, 0);
    client::handler.load()(34, &gps, sizeof gps);
    client::handler.load()(34, &galileo, sizeof galileo);  // has no callback, which is logged
    memory::leaveAll();
    EXPECT_EQ(heard, 2);
    EXPECT_EQ(g_lines, linesBefore + 1);
}

TEST_F(OutOfMemory, ACallbackAssignedThroughTheReferenceIsCalledAndLosesEventsOnly)
{
    open();
    std::atomic<int> first{0};
    std::atomic<int> second{0};
    modem->setNotificationCB(Listener{&first, {}});
    settle();
    modem->getNotificationCB() = Listener{&second, {}};
    client::handler.load()(22, nullptr, 0);
    EXPECT_EQ(second, 1);
    EXPECT_EQ(first, 0);
    memory::leave(0);
    client::handler.load()(22, nullptr, 0);
    memory::leaveAll();
    EXPECT_EQ(second, 1);
    modem->getNotificationCB() = nullptr;
    client::handler.load()(22, nullptr, 0);
    EXPECT_EQ(second, 1);
}

TEST_F(OutOfMemory, ACopyOfTheNotificationCallbackOutlivesItsReplacement)
{
    std::atomic<int> heard{0};
    modem->setNotificationCB(Listener{&heard, {}});
    const auto kept = modem->getNotificationCB();
    modem->setNotificationCB({});
    settle();
    kept(NOTIFY_ID::EVENT_22, nullptr, 0);
    EXPECT_EQ(heard, 1);
}

TEST_F(OutOfMemory, DestroyingAnOpenObjectNeedsNone)
{
    open();
    memory::leave(0);
    modem.reset();
    memory::leaveAll();
    EXPECT_EQ(client::calls, 2);
}

TEST_F(OutOfMemory, DestroyingEndsWhatIsRepeatedForEver)
{
    open();
    client::code = 2;
    std::atomic<int> ended{0};
    modem->startRawGNSS([&ended](int, std::string&&) { ++ended; });
    ASSERT_TRUE(eventually([] { return client::calls == 3; }));
    memory::leave(0);
    modem.reset();
    memory::leaveAll();
    EXPECT_EQ(ended, 1);
}

TEST_F(OutOfMemory, AConstructorThatFailsLeavesEventsAndTheLogCallbackWhereTheyWere)
{
    std::atomic<int> heard{0};
    modem->setNotificationCB(Listener{&heard, {}});
    settle();
    std::function<void(int, const char*)> log = countLine;
    alignas(KelArc) std::array<unsigned char, sizeof(KelArc)> place;
    KelArc* second = nullptr;
    int expected = 0;
    const int failures =
        memory::failEveryAllocation([&] { second = ::new (static_cast<void*>(place.data())) KelArc(std::move(log)); },
                                    [&] {
                                        EXPECT_TRUE(static_cast<bool>(log));
                                        client::handler.load()(22, nullptr, 0);
                                        EXPECT_EQ(heard, ++expected);
                                    });
    EXPECT_GT(failures, 0);
    EXPECT_FALSE(static_cast<bool>(log));
    client::handler.load()(22, nullptr, 0);
    EXPECT_EQ(heard, expected);  // the new object has no callback
    second->~KelArc();
    modem.emplace(countLine);
}

TEST_F(OutOfMemory, WritingASettingPresetsTheIndicatorToTwo)
{
    open();
    EXPECT_EQ(ask(), 0);
    EXPECT_EQ(client::indicatorOnEntry, 2);
}

TEST_F(OutOfMemory, EveryOperationRunsOnAStackOf64KiB)
{
    pthread_attr_t before;
    ASSERT_EQ(pthread_getattr_default_np(&before), 0);
    pthread_attr_t small;
    ASSERT_EQ(pthread_getattr_default_np(&small), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&small, 64 * 1024), 0);
    ASSERT_EQ(pthread_setattr_default_np(&small), 0);
    modem.emplace(countLine);
    ASSERT_EQ(pthread_setattr_default_np(&before), 0);
    pthread_attr_destroy(&small);
    pthread_attr_destroy(&before);
    open();
    client::text = "a text that is longer than a small string, so that the worker copies it";
    int expected = 0;
    std::atomic<int> answers{0};
    std::atomic<int> events{0};
    for (const Operation& operation : operations()) {
        operation.request(*modem, operation.answersOnSuccess == 0 ? events : answers);
        expected += operation.answersOnSuccess;
    }
    settle();
    EXPECT_EQ(answers, expected);
}

using OutOfMemoryDeathTest = OutOfMemory;

TEST_F(OutOfMemoryDeathTest, ALongTextThatTheWorkerHasNoMemoryForEndsTheProcess)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            open();
            settle();
            client::text = "16 characters...";
            client::worksWithoutMemory = true;
            modem->getArcVersion([](int, std::string&&) {});
            eventually([] { return false; });
        },
        "bad_alloc");
}

}  // namespace
