#include "async/Outcome.h"
#include "support/KelArcTest.h"

namespace {

using kelarc::KelArc;
using kelarc::async::request;
using kelarc::gnss::SYSTEM;
using support::Function;

// What is refused in words, among other parameters too.
using kelarc::async::detail::OperationOf;
using NotificationCallback = std::function<void(kelarc::NOTIFY_ID, void*, int)>&&;
using LstaCallback = std::function<void(kelarc::lsta::TYPE, int, double)>&&;
using ResultCallback = std::function<void(int)>&&;
static_assert(OperationOf<int, NotificationCallback>::isNotification);
static_assert(OperationOf<int, LstaCallback, ResultCallback>::isLstaSwitch);
static_assert(!OperationOf<int, ResultCallback>::isNotification && !OperationOf<int, ResultCallback>::isLstaSwitch);
static_assert(!OperationOf<int>::Callback::isCallback);

class AFuture : public support::KelArcTest
{
};

TEST_F(AFuture, HoldsASingleValuePlain)
{
    std::future<int> opened = request(kelarc(), &KelArc::open);
    EXPECT_EQ(outcome::of(std::move(opened)), "answer(0)");
    EXPECT_TRUE(kelarc().isOpen());
    std::future<int> closed = request(kelarc(), &KelArc::close);
    EXPECT_EQ(outcome::of(std::move(closed)), "answer(0)");
}

TEST_F(AFuture, HoldsSeveralValuesAsATuple)
{
    open();
    arcsim::answerNext(Function::CheckModuleSetting, {support::reply("\"17\"")});
    const auto [code, elevation] = request(kelarc(), &KelArc::getMinElevation).get();
    EXPECT_EQ(code, 0);
    EXPECT_EQ(elevation, 17);
}

TEST_F(AFuture, HoldsTextsAndRecordsByValue)
{
    open();
    arcsim::answerNext(Function::CheckModuleSetting, {support::reply("\"std\"")});
    std::future<std::tuple<int, std::string>> setting = request(kelarc(), &KelArc::getModuleSetting, "Power/Cpu");
    EXPECT_EQ(outcome::of(std::move(setting)), "answer(0, '\"std\"')");

    arcsim::Answer versions = support::reply("one");
    versions.secondText = "two";
    arcsim::answerNext(Function::GetRilVersion, {versions});
    std::future<std::tuple<int, kelarc::RilVersion>> version = request(kelarc(), &KelArc::getRilVersion);
    EXPECT_EQ(outcome::of(std::move(version)), "answer(0, 'one', 'two')");
}

TEST_F(AFuture, HoldsAFailureOfTheModemAsAnAnswer)
{
    open();
    failTimes(Function::ResetAGNSS, 15, 24);
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::resetAGNSS)), "answer(24)");
}

TEST_F(AFuture, HoldsTheAnswerOfAnInactiveObject)
{
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::ATcmd, "AT")), "answer(32, '<UNKNOWN>')");
}

TEST_F(AFuture, HasARefusalWhenTheCallReturns)
{
    open();
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::setMinElevation, 46)), "answer(14, false)");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::getLstaGnss, kelarc::lsta::TECH{5})), "answer(14, false, 0)");
}

TEST_F(AFuture, IsMadeOfEveryOperationThatAnswers)
{
    using namespace kelarc;
    open();
    script(Function::CurrentLSTA, {0});
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getArcVersion)).substr(0, 11), "answer(0, '");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::enableLogging, LOGGING_ZONE{1}, "x")), "answer(0)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::setModuleSetting, "Power/Cpu", "\"max\"")), "answer(0, true)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getCpuPower)), "answer(0, 2)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::setCpuPower, CPU_POWER::STANDARD)), "answer(0, true)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::setCpuPsm, true)), "answer(0, true)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getCpuPsm)), "answer(0, 2)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::setGnssFormat, gnss::FORMAT::RAW)), "answer(0, true)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getGnssFormat)), "answer(0, 2)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::setDRSync, true)), "answer(0, true)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getDRSync)), "answer(0, 2)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::setGnssStatus, SYSTEM::QZSS, true)), "answer(0, 4, true)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getGnssStatus, SYSTEM::QZSS)), "answer(0, 4, 2)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::setSbasStatus, false)), "answer(0, true)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getSbasStatus)), "answer(0, 1)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::setGnssFrequency, gnss::FREQUENCY::EVERY_200_MS)),
              "answer(0, true)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getGnssFrequency)), "answer(0, 3)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::setMinElevation, 12)), "answer(0, true)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::setRawMask, 7)), "answer(0, true)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getRawMask)), "answer(0, 7)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getGnssRawVersion)).substr(0, 11), "answer(0, '");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::startRawGNSS)).substr(0, 11), "answer(0, '");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::stopGNSS)), "answer(0)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::forceStopGNSS)), "answer(0)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::resetAGNSS)), "answer(0)");
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getLstaGnss, lsta::TECH::BEIDOU)), "answer(0, false, 0)");
}

TEST_F(AFuture, ThatIsThrownAwayLeavesTheRequestToBeDone)
{
    open();
    request(kelarc(), &KelArc::resetAGNSS);
    settle();
    EXPECT_EQ(callCount(Function::ResetAGNSS), 1U);
}

TEST_F(AFuture, IsNotMadeWhereTheOperationThrows)
{
    KelArc loud([](int, const char*) { throw std::runtime_error("the log is full"); });
    EXPECT_THROW(request(loud, &KelArc::setMinElevation, 46), std::runtime_error);
}

}  // namespace
