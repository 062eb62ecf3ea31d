#include "sim/model_support.h"

#include <array>
#include <atomic>
#include <cstring>
#include <future>

namespace {

using arcsim::Answer;
using arcsim::Function;
using model_test::EnvironmentScenario;
using model_test::Mailbox;
using model_test::Signal;

class Notifications : public model_test::SimulatedModem
{
protected:
    Notifications()
    {
        mailbox.clear();
        EXPECT_EQ(ARC_Open(), 0);
        EXPECT_EQ(ARC_RegisterNotification(Mailbox::handler), 0);
    }
    ~Notifications() override
    {
        arcsim::reset();
        mailbox.clear();
    }

    Mailbox& mailbox = Mailbox::instance();
};

TEST_F(Notifications, AreHandedOverAsTheyAre)
{
    int payload = 7;
    EXPECT_TRUE(arcsim::deliverEvent(22, &payload, -5));
    EXPECT_EQ(mailbox.count(), 1U) << "delivered before the return";
    EXPECT_EQ(mailbox.at(0).id, 22);
    EXPECT_EQ(mailbox.at(0).data, &payload);
    EXPECT_EQ(mailbox.at(0).length, -5);
}

TEST_F(Notifications, ComeOnOneThreadOfTheirOwn)
{
    arcsim::deliverEvent(22, nullptr, 0);
    arcsim::queueEvent(72, {});
    mailbox.waitFor(2);
    EXPECT_EQ(mailbox.at(0).thread, arcsim::notificationThread());
    EXPECT_EQ(mailbox.at(1).thread, arcsim::notificationThread());
    EXPECT_NE(arcsim::notificationThread(), std::this_thread::get_id());
}

TEST_F(Notifications, ComeInTheOrderInWhichTheyWereQueued)
{
    for (unsigned char i = 0; i < 50; ++i)
        arcsim::queueEvent(i, {i, 1, 2});
    EXPECT_TRUE(arcsim::deliverEvent(50, nullptr, 0));
    ASSERT_EQ(mailbox.count(), 51U) << "a delivered event waits for those queued before it";
    for (unsigned char i = 0; i < 50; ++i) {
        EXPECT_EQ(mailbox.at(i).id, i);
        EXPECT_EQ(mailbox.at(i).bytes, (std::vector<unsigned char>{i, 1, 2}));
    }
}

TEST_F(Notifications, GoNowhereWithoutAHandler)
{
    ARC_RegisterNotification(nullptr);
    EXPECT_FALSE(arcsim::deliverEvent(22, nullptr, 0));
    arcsim::queueEvent(22, {});
    ARC_RegisterNotification(Mailbox::handler);
    EXPECT_TRUE(arcsim::deliverEvent(72, nullptr, 0));
    EXPECT_EQ(mailbox.at(mailbox.count() - 1).id, 72);
}

TEST_F(Notifications, KeepTheirHandlerWhenARegistrationFails)
{
    Answer failing;
    failing.code = 2;
    arcsim::answerNext(Function::RegisterNotification, {failing});
    EXPECT_EQ(ARC_RegisterNotification(nullptr), 2);
    EXPECT_TRUE(arcsim::deliverEvent(22, nullptr, 0));
}

TEST_F(Notifications, GoToAHandlerWhoseRegistrationAScriptGranted)
{
    ARC_RegisterNotification(nullptr);
    arcsim::answerNext(Function::RegisterNotification, {Answer{}});
    EXPECT_EQ(ARC_RegisterNotification(Mailbox::handler), 0);
    EXPECT_TRUE(arcsim::deliverEvent(22, nullptr, 0));
}

TEST_F(Notifications, MayBeSentFromWithinTheHandler)
{
    bool delivered = false;
    mailbox.during([&](const Mailbox::Letter& letter) {
        if (letter.id == 22)
            delivered = arcsim::deliverEvent(72, nullptr, 0);
    });
    EXPECT_TRUE(arcsim::deliverEvent(22, nullptr, 0));
    EXPECT_TRUE(delivered);
    EXPECT_EQ(mailbox.count(), 2U);
}

TEST_F(Notifications, LeaveTheModemUsableWhileTheHandlerRuns)
{
    int code = -1;
    mailbox.during(
        [&](const Mailbox::Letter&) { code = ARC_CheckModuleSetting("Power/Cpu", "\"max\"", nullptr, 0, nullptr); });
    EXPECT_TRUE(arcsim::deliverEvent(22, nullptr, 0));
    EXPECT_EQ(code, 0);
}

TEST_F(Notifications, AreOverWhenResetReturns)
{
    Signal inside;
    Signal release;
    std::atomic<bool> left{false};
    mailbox.during([&](const Mailbox::Letter&) {
        inside.set();
        release.wait();
        left = true;
    });
    arcsim::queueEvent(22, {});
    arcsim::queueEvent(72, {});
    ASSERT_TRUE(inside.wait());
    auto reset = std::async(std::launch::async, [&] {
        arcsim::reset();
        return left.load();
    });
    EXPECT_EQ(reset.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout) << "the handler still runs";
    release.set();
    EXPECT_TRUE(reset.get()) << "reset returned while the handler ran";
    EXPECT_EQ(mailbox.count(), 1U) << "waiting events are dropped";
    EXPECT_FALSE(arcsim::deliverEvent(22, nullptr, 0)) << "the handler is forgotten";
}

TEST_F(Notifications, CanBeResetFromWithinTheHandler)
{
    mailbox.during([](const Mailbox::Letter&) { arcsim::reset(); });
    EXPECT_TRUE(arcsim::deliverEvent(22, nullptr, 0));
    EXPECT_FALSE(arcsim::isOpen());
}

TEST_F(Notifications, OfTheScenarioComeAtTheirTimesWithTheirPayload)
{
    const EnvironmentScenario scenario(R"({"events": [
        {"atMs": 120, "id": 72, "payload": "0aFF"}, {"atMs": 60, "id": 22}]})");
    const auto begin = std::chrono::steady_clock::now();
    ARC_Open();
    ARC_RegisterNotification(Mailbox::handler);
    mailbox.waitFor(2);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(120));
    EXPECT_EQ(mailbox.at(0).id, 22);
    EXPECT_EQ(mailbox.at(0).length, 0);
    EXPECT_EQ(mailbox.at(1).id, 72);
    EXPECT_EQ(mailbox.at(1).bytes, (std::vector<unsigned char>{0x0A, 0xFF}));
}

LstaInfo recordIn(const Mailbox::Letter& letter)
{
    LstaInfo record{};
    EXPECT_EQ(letter.id, 34);
    EXPECT_EQ(letter.bytes.size(), 64U);
    std::memcpy(&record, letter.bytes.data(), std::min(letter.bytes.size(), sizeof record));
    return record;
}

TEST_F(Notifications, TellThatASystemIsTracked)
{
    const EnvironmentScenario scenario(R"({"firstFix": {"coldMs": 0}})");
    ARC_Open();
    ARC_RegisterNotification(Mailbox::handler);
    char path[64];
    ASSERT_EQ(ARC_StartGNSSraw(path, 64), 0);
    ASSERT_EQ(ARC_EnableLSTA(10, true, 0), 0);
    const LstaInfo reported = recordIn(mailbox.at(0));
    EXPECT_EQ(reported.indicator, 1000);
    EXPECT_EQ(reported.status, 1);
    EXPECT_GT(reported.value, 20);
    LstaInfo asked{};
    EXPECT_EQ(ARC_CurrentLSTA(10, &asked), 0);
    EXPECT_EQ(asked.status, 1);
}

TEST_F(Notifications, TellAnLstaChangeOfTheScenario)
{
    const EnvironmentScenario scenario(R"({"lsta": [{"atMs": 80, "system": "Galileo", "status": 3, "value": -1.5}]})");
    ARC_Open();
    ARC_RegisterNotification(Mailbox::handler);
    ASSERT_EQ(ARC_EnableLSTA(13, true, 0), 0);
    const LstaInfo reported = recordIn(mailbox.at(0));
    EXPECT_EQ(reported.indicator, 1003);
    EXPECT_EQ(reported.status, 3);
    EXPECT_EQ(reported.value, -1.5);
}

/// The process has to end by itself and in order, whatever its threads are doing. The signals are never destroyed: that
/// would wait for the threads that wait for them.
class Exit : public testing::Test
{
protected:
    Exit() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

[[noreturn]] void exitDuringHandler()
{
    static Signal& inside = *new Signal;
    static Signal& never = *new Signal;
    ARC_Open();
    ARC_RegisterNotification([](int, void*, int) {
        inside.set();
        never.wait();
    });
    arcsim::queueEvent(22, {});
    inside.wait();
    std::exit(0);
}

TEST_F(Exit, IsCleanWhileAHandlerDoesNotReturn)
{
    EXPECT_EXIT(exitDuringHandler(), testing::ExitedWithCode(0), "");
}

[[noreturn]] void exitFromHandler()
{
    static Signal& never = *new Signal;
    ARC_Open();
    ARC_RegisterNotification([](int, void*, int) { std::exit(0); });
    arcsim::queueEvent(22, {});
    never.wait();
    std::abort();
}

TEST_F(Exit, IsCleanFromWithinTheHandler)
{
    EXPECT_EXIT(exitFromHandler(), testing::ExitedWithCode(0), "");
}

/// Uses the modem when the static objects of the application are destroyed, after the simulator's own exit.
struct LateUser
{
    ~LateUser()
    {
        ARC_StopGNSS();
        ARC_Close();
    }
};

[[noreturn]] void exitWhileEverythingRuns()
{
    static LateUser lateUser;
    arcsim::setRealisticLatency(true);
    ARC_Open();
    ARC_RegisterNotification([](int, void*, int) {});
    char path[64];
    ARC_StartGNSSraw(path, 64);
    ARC_EnableLSTA(10, true, 1);
    std::thread([] {
        for (;;)
            ARC_ResetAGNSS();
    }).detach();
    arcsim::waitForCalls(Function::ResetAGNSS, 2);
    std::exit(0);
}

TEST_F(Exit, IsCleanWhileTheEngineRunsAndAnotherThreadCalls)
{
    EXPECT_EXIT(exitWhileEverythingRuns(), testing::ExitedWithCode(0), "");
}

}  // namespace
