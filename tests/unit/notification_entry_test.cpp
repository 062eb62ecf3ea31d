#include "kelarc/Notification.h"

#include "kelarc/KelArc.h"
#include "unit/Interposed.h"

#include <gtest/gtest.h>
#include <system_error>
#include <thread>

using kelarc::KelArc;
using kelarc::NOTIFY_ID;
namespace lsta = kelarc::lsta;

namespace {

TEST(NotificationEntry, DropsEventsWhileNoObjectWasEverConstructed)
{
    kelarc::KelArc* const before = kelarc::KelArc::s_instance.exchange(nullptr);
    kelarc::onArcNotification(22, nullptr, 0);
    kelarc::onArcNotification(34, nullptr, 0);
    EXPECT_EQ(kelarc::KelArc::s_instance, nullptr);
    kelarc::KelArc::s_instance = before;
}

TEST(NotificationEntry, FindsTheObjectConstructedLastAndNothingResetsIt)
{
    kelarc::KelArc first([](int, const char*) {});
    EXPECT_EQ(kelarc::KelArc::s_instance, &first);
    kelarc::KelArc* gone = nullptr;
    {
        kelarc::KelArc second([](int, const char*) {});
        gone = &second;
        EXPECT_EQ(kelarc::KelArc::s_instance, gone);
    }
    EXPECT_EQ(kelarc::KelArc::s_instance, gone);
    kelarc::KelArc::s_instance = nullptr;
}

/// Whether the callback of `replace` is in place when its task is about to be put into the queue.
template <typename Replace, typename Member>
bool replacesBeforeQueuing(Replace replace, Member KelArc::*member)
{
    KelArc modem([](int, const char*) {});
    std::atomic<int> locks{0};
    std::atomic<bool> isInPlace{true};
    const std::thread::id caller = std::this_thread::get_id();
    interposed::onLock(modem.m_taskQueue.mutex.native_handle(), [&] {
        if (std::this_thread::get_id() != caller)
            return;  // the worker
        ++locks;
        isInPlace = isInPlace && static_cast<bool>(modem.*member);
    });
    replace(modem);
    interposed::onLock(nullptr, {});
    EXPECT_EQ(locks, 1);
    return isInPlace;
}

TEST(NotificationCallbacks, AreReplacedBeforeTheTaskIsQueued)
{
    EXPECT_TRUE(replacesBeforeQueuing([](KelArc& modem) { modem.setNotificationCB([](NOTIFY_ID, void*, int) {}); },
                                      &KelArc::m_notificationCb));
    const auto setLsta = [](lsta::TECH tech) {
        return [tech](KelArc& modem) {
            modem.setLstaGnssStatus(
                tech, true, 1, [](lsta::TYPE, int, double) {}, [](int) {});
        };
    };
    EXPECT_TRUE(replacesBeforeQueuing(setLsta(lsta::TECH::GPS), &KelArc::m_lstaGpsCb));
    EXPECT_TRUE(replacesBeforeQueuing(setLsta(lsta::TECH::GLONASS), &KelArc::m_lstaGlonassCb));
    EXPECT_TRUE(replacesBeforeQueuing(setLsta(lsta::TECH::BEIDOU), &KelArc::m_lstaBeidouCb));
    EXPECT_TRUE(replacesBeforeQueuing(setLsta(lsta::TECH::GALILEO), &KelArc::m_lstaGalileoCb));
}

TEST(Construction, ThatIsRefusedAThreadLeavesTheInstanceAndTheLogCallbackAlone)
{
    KelArc* const before = KelArc::s_instance;
    std::function<void(int, const char*)> log = [](int, const char*) {};
    interposed::refuseThreads(true);
    EXPECT_THROW(KelArc(std::move(log)), std::system_error);
    interposed::refuseThreads(false);
    EXPECT_EQ(KelArc::s_instance, before);
    EXPECT_TRUE(static_cast<bool>(log));
}

}  // namespace
