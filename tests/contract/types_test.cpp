#include "kelarc/KelArc.h"

#include <gtest/gtest.h>

#include <type_traits>

// Types and signatures that applications are compiled against.

namespace contract {
namespace {

using kelarc::KelArc;
using kelarc::RESULT;
using std::function;
using std::string;

template <typename Expected, typename Actual>
constexpr bool isSame(Actual)
{
    return std::is_same_v<Expected, Actual>;
}

TEST(PublicTypes, HaveTheirPublishedSizes)
{
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<kelarc::CPU_POWER>, std::uint8_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<RESULT>, std::uint8_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<kelarc::gnss::SYSTEM>, std::uint8_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<kelarc::gnss::FORMAT>, std::uint8_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<kelarc::gnss::FREQUENCY>, std::uint8_t>));
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<kelarc::NOTIFY_ID>, std::uint8_t>));
    EXPECT_EQ(sizeof(kelarc::lsta::TYPE), 4U);
    EXPECT_EQ(sizeof(kelarc::RilVersion), 128U);
    EXPECT_EQ(sizeof(kelarc::RilVersion::primary), 64U);
    EXPECT_EQ(sizeof(kelarc::RilVersion::secondary), 64U);
}

TEST(PublicTypes, HaveEnumeratorsWithThePublishedNumbers)
{
    EXPECT_EQ(static_cast<int>(kelarc::CPU_POWER::UNKNOWN), 0);
    EXPECT_EQ(static_cast<int>(kelarc::CPU_POWER::STANDARD), 1);
    EXPECT_EQ(static_cast<int>(kelarc::CPU_POWER::MAXIMUM), 2);
    EXPECT_EQ(static_cast<int>(RESULT::UNKNOWN), 0);
    EXPECT_EQ(static_cast<int>(RESULT::OFF), 1);
    EXPECT_EQ(static_cast<int>(RESULT::ON), 2);
    EXPECT_EQ(static_cast<int>(kelarc::gnss::SYSTEM::GLONASS), 1);
    EXPECT_EQ(static_cast<int>(kelarc::gnss::SYSTEM::GALILEO), 2);
    EXPECT_EQ(static_cast<int>(kelarc::gnss::SYSTEM::BEIDOU), 3);
    EXPECT_EQ(static_cast<int>(kelarc::gnss::SYSTEM::QZSS), 4);
    EXPECT_EQ(static_cast<int>(kelarc::gnss::FORMAT::UNKNOWN), 0);
    EXPECT_EQ(static_cast<int>(kelarc::gnss::FORMAT::NMEA), 1);
    EXPECT_EQ(static_cast<int>(kelarc::gnss::FORMAT::RAW), 2);
    EXPECT_EQ(static_cast<int>(kelarc::gnss::FREQUENCY::UNKNOWN), 0);
    EXPECT_EQ(static_cast<int>(kelarc::gnss::FREQUENCY::EVERY_1000_MS), 1);
    EXPECT_EQ(static_cast<int>(kelarc::gnss::FREQUENCY::EVERY_500_MS), 2);
    EXPECT_EQ(static_cast<int>(kelarc::gnss::FREQUENCY::EVERY_200_MS), 3);
    EXPECT_EQ(static_cast<int>(kelarc::gnss::FREQUENCY::EVERY_100_MS), 4);
    EXPECT_EQ(static_cast<int>(kelarc::lsta::TECH::GPS), 1);
    EXPECT_EQ(static_cast<int>(kelarc::lsta::TECH::GLONASS), 2);
    EXPECT_EQ(static_cast<int>(kelarc::lsta::TECH::BEIDOU), 3);
    EXPECT_EQ(static_cast<int>(kelarc::lsta::TECH::GALILEO), 4);
    EXPECT_EQ(static_cast<int>(kelarc::lsta::TYPE::GPS), 7);
    EXPECT_EQ(static_cast<int>(kelarc::lsta::TYPE::GLONASS), 8);
    EXPECT_EQ(static_cast<int>(kelarc::lsta::TYPE::BEIDOU), 9);
    EXPECT_EQ(static_cast<int>(kelarc::lsta::TYPE::GALILEO), 10);
    EXPECT_EQ(static_cast<int>(kelarc::NOTIFY_ID::EVENT_22), 1);
    EXPECT_EQ(static_cast<int>(kelarc::NOTIFY_ID::EVENT_72), 3);
    EXPECT_EQ(static_cast<int>(kelarc::NOTIFY_ID::EVENT_73), 5);
    EXPECT_EQ(static_cast<int>(kelarc::NOTIFY_ID::EVENT_74), 4);
    EXPECT_EQ(static_cast<int>(kelarc::NOTIFY_ID::EVENT_75), 6);
    EXPECT_EQ(static_cast<int>(kelarc::NOTIFY_ID::RAW_GNSS_START_ENDED), 7);
}

TEST(PublicClass, HasAVirtualDestructorAndNoCopies)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<KelArc>);
    EXPECT_FALSE(std::is_copy_constructible_v<KelArc>);
    EXPECT_FALSE(std::is_move_constructible_v<KelArc>);
    EXPECT_TRUE((std::is_constructible_v<KelArc, function<void(int, const char*)>&&>));
}

TEST(PublicClass, HasTheseLifecycleOperations)
{
    using WithCode = function<void(int)>&&;
    EXPECT_TRUE((isSame<void (KelArc::*)(WithCode)>(&KelArc::open)));
    EXPECT_TRUE((isSame<void (KelArc::*)(WithCode)>(&KelArc::close)));
    EXPECT_TRUE((isSame<bool (KelArc::*)() const>(&KelArc::isOpen)));
}

TEST(PublicClass, HasTheseInformationOperations)
{
    using WithText = function<void(int, string&&)>&&;
    EXPECT_TRUE((isSame<void (KelArc::*)(WithText)>(&KelArc::getArcVersion)));
    EXPECT_TRUE((isSame<void (KelArc::*)(function<void(int, kelarc::RilVersion&&)> &&)>(&KelArc::getRilVersion)));
    EXPECT_TRUE(
        (isSame<void (KelArc::*)(kelarc::LOGGING_ZONE, const string&, function<void(int)>&&)>(&KelArc::enableLogging)));
    EXPECT_TRUE((isSame<void (KelArc::*)(const string&, WithText)>(&KelArc::ATcmd)));
}

TEST(PublicClass, HasTheseSettingOperations)
{
    using namespace kelarc;
    using Written = function<void(int, bool)>&&;
    using WithResult = function<void(int, RESULT)>&&;
    using WithByte = function<void(int, unsigned char)>&&;
    using WithText = function<void(int, string&&)>&&;
    EXPECT_TRUE((isSame<void (KelArc::*)(const string&, WithText)>(&KelArc::getModuleSetting)));
    EXPECT_TRUE((isSame<void (KelArc::*)(const string&, const string&, Written)>(&KelArc::setModuleSetting)));
    EXPECT_TRUE((isSame<void (KelArc::*)(function<void(int, CPU_POWER)> &&)>(&KelArc::getCpuPower)));
    EXPECT_TRUE((isSame<void (KelArc::*)(CPU_POWER, Written)>(&KelArc::setCpuPower)));
    EXPECT_TRUE((isSame<void (KelArc::*)(WithResult)>(&KelArc::getCpuPsm)));
    EXPECT_TRUE((isSame<void (KelArc::*)(bool, Written)>(&KelArc::setCpuPsm)));
    EXPECT_TRUE((isSame<void (KelArc::*)(function<void(int, gnss::FORMAT)> &&)>(&KelArc::getGnssFormat)));
    EXPECT_TRUE((isSame<void (KelArc::*)(gnss::FORMAT, Written)>(&KelArc::setGnssFormat)));
    EXPECT_TRUE((isSame<void (KelArc::*)(WithResult)>(&KelArc::getDRSync)));
    EXPECT_TRUE((isSame<void (KelArc::*)(bool, Written)>(&KelArc::setDRSync)));
    EXPECT_TRUE(
        (isSame<void (KelArc::*)(gnss::SYSTEM, function<void(int, gnss::SYSTEM, RESULT)> &&)>(&KelArc::getGnssStatus)));
    EXPECT_TRUE((isSame<void (KelArc::*)(gnss::SYSTEM, bool, function<void(int, gnss::SYSTEM, bool)>&&)>(
        &KelArc::setGnssStatus)));
    EXPECT_TRUE((isSame<void (KelArc::*)(WithResult)>(&KelArc::getSbasStatus)));
    EXPECT_TRUE((isSame<void (KelArc::*)(bool, Written)>(&KelArc::setSbasStatus)));
    EXPECT_TRUE((isSame<void (KelArc::*)(function<void(int, gnss::FREQUENCY)> &&)>(&KelArc::getGnssFrequency)));
    EXPECT_TRUE((isSame<void (KelArc::*)(gnss::FREQUENCY, Written)>(&KelArc::setGnssFrequency)));
    EXPECT_TRUE((isSame<void (KelArc::*)(WithByte)>(&KelArc::getMinElevation)));
    EXPECT_TRUE((isSame<void (KelArc::*)(unsigned char, Written)>(&KelArc::setMinElevation)));
    EXPECT_TRUE((isSame<void (KelArc::*)(WithByte)>(&KelArc::getRawMask)));
    EXPECT_TRUE((isSame<void (KelArc::*)(unsigned char, Written)>(&KelArc::setRawMask)));
    EXPECT_TRUE((isSame<void (KelArc::*)(WithText)>(&KelArc::getGnssRawVersion)));
}

TEST(PublicClass, HasTheseGnssAndNotificationOperations)
{
    using namespace kelarc;
    using WithCode = function<void(int)>&&;
    using Events = function<void(NOTIFY_ID, void*, int)>;
    using LstaEvents = function<void(lsta::TYPE, int, double)>;
    EXPECT_TRUE((isSame<void (KelArc::*)(function<void(int, string&&)> &&)>(&KelArc::startRawGNSS)));
    EXPECT_TRUE((isSame<void (KelArc::*)(WithCode)>(&KelArc::stopGNSS)));
    EXPECT_TRUE((isSame<void (KelArc::*)(WithCode)>(&KelArc::forceStopGNSS)));
    EXPECT_TRUE((isSame<void (KelArc::*)(WithCode)>(&KelArc::resetAGNSS)));
    EXPECT_TRUE((isSame<void (KelArc::*)(lsta::TECH, function<void(int, bool, int)> &&)>(&KelArc::getLstaGnss)));
    EXPECT_TRUE((isSame<void (KelArc::*)(lsta::TECH, bool, int, LstaEvents&&, WithCode)>(&KelArc::setLstaGnssStatus)));
    EXPECT_TRUE((isSame<void (KelArc::*)(Events &&)>(&KelArc::setNotificationCB)));
    EXPECT_TRUE((isSame<Events& (KelArc::*)()>(&KelArc::getNotificationCB)));
}

TEST(PublicClass, HasTheseReaders)
{
    EXPECT_TRUE((isSame<std::uint32_t (KelArc::*)() const>(&KelArc::getRunningTaskId)));
    EXPECT_TRUE((isSame<string (KelArc::*)() const>(&KelArc::getRunningTaskName)));
    EXPECT_EQ(sizeof(std::declval<const KelArc&>().getPendingTasks()), 4U);
    EXPECT_TRUE((isSame<std::int64_t (KelArc::*)() const>(&KelArc::getDelayedExecutionTime)));
    EXPECT_TRUE((isSame<string (KelArc::*)() const>(&KelArc::tasksToString)));
}

}  // namespace
}  // namespace contract
