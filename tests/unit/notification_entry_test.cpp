#include "kelarc/Notification.h"

#include "kelarc/KelArc.h"

#include <gtest/gtest.h>

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

}  // namespace
