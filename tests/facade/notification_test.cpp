#include "support/KelArcTest.h"

#include <climits>
#include <cstddef>
#include <cstring>

namespace {

using kelarc::NOTIFY_ID;
using kelarc::lsta::TECH;
using kelarc::lsta::TYPE;
using support::Function;
using support::Kind;
using support::kPause;
using support::lstaInfo;
using support::resultLine;
using support::Strings;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kRegister = "ARC_RegisterNotification()";
constexpr const char* kNoGlonass = "4 KelArc::notifyLsta.1276: No callback defined for Glonass LSTA notifications!";

class Notification : public support::KelArcTest
{
protected:
    /// Registers, with a callback that journals every event.
    void registerUser()
    {
        kelarc().setNotificationCB(event());
        settle();
        journal.clear();
    }

    void installLsta(TECH tech, std::function<void(TYPE, int, double)> callback)
    {
        kelarc().setLstaGnssStatus(tech, true, 0, std::move(callback), [](int) {});
        settle();
        journal.clear();
    }

    static void deliver(int id, void* data = nullptr, int length = 0)
    {
        ASSERT_TRUE(arcsim::deliverEvent(id, data, length));
    }
};

TEST_F(Notification, RegistersOnceAndTellsOnlyTheLog)
{
    kelarc().setNotificationCB(event());
    settle();
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(-1, kRegister, 0)));
    EXPECT_THAT(lastArguments(Function::RegisterNotification), ElementsAre("set"));
}

TEST_F(Notification, RegistersAgainForEachCallback)
{
    registerUser();
    registerUser();
    EXPECT_EQ(callCount(Function::RegisterNotification), 2U);
}

TEST_F(Notification, RegistrationIsRepeatedUntilItSucceedsWhateverIsCancelled)
{
    open();
    failTimes(Function::RegisterNotification, 30, 31);
    duringPause(2, [this] { cancel(); });
    kelarc().setNotificationCB(event());
    settle();
    Strings expected(30, resultLine(-1, kRegister, 31));
    expected.push_back(resultLine(-1, kRegister, 0));
    expected.push_back(resultLine(15, "ARC_Close()", 0));
    EXPECT_EQ(lines(), expected);
    EXPECT_EQ(support::pauses::count(), 30U);
}

TEST_F(Notification, TakesTheCallersFunction)
{
    std::function<void(NOTIFY_ID, void*, int)> callback = event();
    kelarc().setNotificationCB(std::move(callback));
    EXPECT_FALSE(callback);
    settle();
}

TEST_F(Notification, TheStoredCallbackIsEmptyAtFirstAndCallableOnceSet)
{
    EXPECT_FALSE(kelarc().getNotificationCB());
    kelarc().setNotificationCB(event());
    ASSERT_TRUE(kelarc().getNotificationCB());
    kelarc().getNotificationCB()(NOTIFY_ID{3}, nullptr, 4);
    EXPECT_THAT(events(), ElementsAre("event(3, null, 4)"));
    kelarc().setNotificationCB(nullptr);
    EXPECT_FALSE(kelarc().getNotificationCB());
    settle();
}

TEST_F(Notification, EventsReachTheCallbackBeforeRegistrationHasBeenRepeated)
{
    registerUser();
    const support::Gate gate = holdWorker();
    kelarc().setNotificationCB(event("second"));
    deliver(22);
    EXPECT_THAT(events(), ElementsAre("second(1, null, 0)"));
}

TEST_F(Notification, OnlyFiveEventsReachTheUserUnderTheirNumbers)
{
    registerUser();
    for (int id = -5; id <= 200; ++id) {
        if (id == 34)
            continue;
        journal.clear();
        deliver(id, nullptr, id);
        Strings expected;
        switch (id) {
        case 22:
            expected = {"event(1, null, 22)"};
            break;
        case 72:
            expected = {"event(3, null, 72)"};
            break;
        case 73:
            expected = {"event(5, null, 73)"};
            break;
        case 74:
            expected = {"event(4, null, 74)"};
            break;
        case 75:
            expected = {"event(6, null, 75)"};
            break;
        default:
            break;
        }
        EXPECT_EQ(journal.texts(), expected) << id;
    }
}

TEST_F(Notification, EventsBeyondAByteAreIgnored)
{
    registerUser();
    for (const int id : {256 + 22, 256 + 34, 256 + 72, 65536 + 73, 1000, 1000000, INT_MAX, INT_MIN, -22})
        deliver(id);
    EXPECT_THAT(journal.texts(), IsEmpty());
}

TEST_F(Notification, DataAndLengthAreHandedOverUnchanged)
{
    std::vector<std::pair<void*, int>> seen;
    kelarc().setNotificationCB([&](NOTIFY_ID, void* data, int length) { seen.emplace_back(data, length); });
    settle();
    char data[3] = {'a', 'b', 'c'};
    deliver(22, data, 3);
    deliver(75, data + 1, -7);
    deliver(72, nullptr, INT_MAX);
    EXPECT_THAT(seen, ElementsAre(std::pair<void*, int>(data, 3), std::pair<void*, int>(data + 1, -7),
                                  std::pair<void*, int>(nullptr, INT_MAX)));
}

TEST_F(Notification, EventsArriveOnTheNotificationThread)
{
    registerUser();
    deliver(74);
    ASSERT_EQ(events().size(), 1U);
    EXPECT_EQ(journal.entries().at(0).thread, arcsim::notificationThread());
    EXPECT_NE(journal.entries().at(0).thread, workerThread());
}

TEST_F(Notification, NothingIsDeliveredWithoutAUserCallback)
{
    open();
    registerUser();
    installLsta(TECH{1}, event("lsta"));
    kelarc().setNotificationCB(nullptr);
    settle();
    journal.clear();
    LstaInfo info = lstaInfo(1000, 1, 1);
    deliver(34, &info, sizeof info);
    info.indicator = 1001;
    deliver(34, &info, sizeof info);
    deliver(22);
    EXPECT_THAT(journal.texts(), IsEmpty());
}

TEST_F(Notification, LstaEventsDoNotReachTheUserCallback)
{
    open();
    registerUser();
    installLsta(TECH{4}, event("galileo"));
    LstaInfo info = lstaInfo(1003, 2, 0.5);
    deliver(34, &info, sizeof info);
    EXPECT_THAT(journal.texts(), ElementsAre("galileo(10, 2, 0.500000)"));
}

TEST_F(Notification, LstaEventsWithoutACallbackAreLogged)
{
    registerUser();
    LstaInfo info = lstaInfo(1001, 2, 0.5);
    deliver(34, &info, sizeof info);
    EXPECT_THAT(journal.texts(), ElementsAre(kNoGlonass));
}

TEST_F(Notification, LstaEventsOfUnknownSystemsAreIgnored)
{
    registerUser();
    for (const int indicator : {0, 10, 999, 1004, -1000, INT_MAX, INT_MIN}) {
        LstaInfo info = lstaInfo(indicator, 1, 1);
        deliver(34, &info, sizeof info);
    }
    EXPECT_THAT(journal.texts(), IsEmpty());
}

TEST_F(Notification, AnLstaEventWithoutDataIsIgnored)
{
    registerUser();
    deliver(34, nullptr, 0);
    EXPECT_THAT(journal.texts(), IsEmpty());
}

TEST_F(Notification, TheLengthOfAnLstaEventIsNotLookedAt)
{
    registerUser();
    LstaInfo info = lstaInfo(1001, 2, 0.5);
    deliver(34, &info, 0);
    deliver(34, &info, -1);
    EXPECT_EQ(lines().size(), 2U);
}

TEST_F(Notification, AnLstaEventMayBeUnalignedAndEndAfterItsValue)
{
    open();
    registerUser();
    double received = 0;
    int status = 0;
    installLsta(TECH{2}, [&](TYPE, int givenStatus, double value) {
        status = givenStatus;
        received = value;
    });
    const LstaInfo info = lstaInfo(1001, -3, 1.0 / 3);
    constexpr std::size_t kRead = 24;
    const auto payload = std::make_unique<unsigned char[]>(kRead + 1);
    std::memcpy(payload.get() + 1, &info, kRead);
    deliver(34, payload.get() + 1, kRead);
    EXPECT_EQ(status, -3);
    EXPECT_EQ(received, 1.0 / 3);
}

TEST_F(Notification, LstaFieldsAreReadAtTheirPublishedOffsets)
{
    open();
    registerUser();
    installLsta(TECH{3}, event());
    unsigned char payload[64];
    std::memset(payload, 0xee, sizeof payload);
    const std::int32_t indicator = 1002;
    const std::int32_t status = -123456;
    const double value = -7.25;
    std::memcpy(payload, &indicator, 4);
    std::memcpy(payload + 8, &status, 4);
    std::memcpy(payload + 16, &value, 8);
    deliver(34, payload, sizeof payload);
    EXPECT_THAT(events(), ElementsAre("event(9, -123456, -7.250000)"));
}

TEST_F(Notification, TheObjectConstructedLastReceivesTheEvents)
{
    registerUser();
    support::Journal others;
    kelarc::KelArc other(others.logCallback());
    deliver(22);
    EXPECT_THAT(events(), IsEmpty());
    other.setNotificationCB(event("other"));
    ASSERT_TRUE(others.waitFor(Kind::line, 1));
    deliver(22);
    EXPECT_THAT(events(), ElementsAre("other(1, null, 0)"));
    arcsim::reset();  // no event may meet the destroyed object
}

TEST_F(Notification, CallbacksKeepTheirOwnStateBetweenEvents)
{
    open();
    std::vector<int> counts;
    kelarc().setNotificationCB([&counts, count = 0](NOTIFY_ID, void*, int) mutable { counts.push_back(++count); });
    settle();
    std::vector<int> lstaCounts;
    installLsta(TECH{1}, [&lstaCounts, count = 10](TYPE, int, double) mutable { lstaCounts.push_back(++count); });
    LstaInfo info = lstaInfo(1000, 1, 1);
    for (int i = 0; i < 3; ++i) {
        deliver(22);
        deliver(34, &info, sizeof info);
    }
    script(Function::StartGNSSraw, {0});
    kelarc().startRawGNSS([](int, std::string&&) {});
    settle();
    EXPECT_THAT(counts, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(lstaCounts, ElementsAre(11, 12, 13));
}

}  // namespace
