#include "async/Outcome.h"
#include "support/KelArcTest.h"

#include <vector>

namespace {

using kelarc::KelArc;
using kelarc::async::request;
using kelarc::gnss::SYSTEM;
using support::Function;
using support::Gate;

class ADroppedRequest : public support::KelArcTest
{
protected:
    /// Requests of which only the queue knows.
    void fillQueue(unsigned count)
    {
        for (unsigned i = 0; i < count; ++i)
            kelarc().getArcVersion([](int, std::string&&) {});
        ASSERT_EQ(kelarc().getPendingTasks(), count);
    }
};

TEST_F(ADroppedRequest, BreaksItsPromiseBeforeTheCallReturnsWhenTheQueueIsFull)
{
    open();
    const Gate gate = holdWorker();
    fillQueue(127);
    std::future<int> last = request(kelarc(), &KelArc::resetAGNSS);
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::resetAGNSS)), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::getMinElevation)), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::stopGNSS)), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::close)), "dropped");
    EXPECT_FALSE(outcome::hasEnded(last));
    gate.open();
    EXPECT_EQ(outcome::of(std::move(last)), "answer(0)");
}

TEST_F(ADroppedRequest, IsAnOpenOfWhichOnlyTheFirstTaskFoundRoomOnceThatHasEnded)
{
    const Gate gate = holdWorker();
    fillQueue(127);
    std::future<int> opened = request(kelarc(), &KelArc::open);
    EXPECT_EQ(kelarc().getPendingTasks(), 128U);
    EXPECT_FALSE(outcome::hasEnded(opened));
    gate.open();
    EXPECT_EQ(outcome::of(std::move(opened)), "dropped");
    EXPECT_FALSE(kelarc().isOpen());
}

TEST_F(ADroppedRequest, IsTheOpeningOfAnOpenObject)
{
    open();
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::open)), "dropped");
}

TEST_F(ADroppedRequest, IsTheOpeningOfAnActiveObject)
{
    activateWhileClosed();
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::open)), "dropped");
}

TEST_F(ADroppedRequest, IsTheClosingOfAClosedObject)
{
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::close)), "dropped");
}

TEST_F(ADroppedRequest, AsksForASystemThatDoesNotExist)
{
    open();
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::getGnssStatus, SYSTEM{9})), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::setGnssStatus, SYSTEM{9}, true)), "dropped");
}

TEST_F(ADroppedRequest, IsAnLstaQueryCancelledBetweenAttempts)
{
    open();
    failTimes(Function::CurrentLSTA, 15, 2);
    duringPause(1, [this] { kelarc().stopGNSS([](int) {}); });
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getLstaGnss, kelarc::lsta::TECH::BEIDOU)), "dropped");
    EXPECT_EQ(callCount(Function::CurrentLSTA), 1U);
}

TEST_F(ADroppedRequest, IsAnLstaQueryWhileInactiveAlthoughNothingComesAfterIt)
{
    EXPECT_EQ(outcome::of(request(kelarc(), &KelArc::getLstaGnss, kelarc::lsta::TECH::GPS)), "dropped");
}

TEST_F(ADroppedRequest, HadNotBegunWhenTheObjectWasDestroyed)
{
    open();
    arcsim::Answer slow;
    slow.latency = std::chrono::milliseconds(20);
    arcsim::answerAlways(Function::ResetAGNSS, slow);
    std::vector<std::future<int>> requests;
    for (int i = 0; i < 100; ++i)
        requests.push_back(request(kelarc(), &KelArc::resetAGNSS));
    ASSERT_TRUE(arcsim::waitForCalls(Function::ResetAGNSS, 1));
    destroyAsScripted();
    EXPECT_EQ(outcome::now(std::move(requests.front())), "answer(0)");
    EXPECT_EQ(outcome::now(std::move(requests.back())), "dropped");
    for (std::size_t i = 1; i + 1 < requests.size(); ++i)
        EXPECT_TRUE(outcome::hasEnded(requests[i])) << i;
}

TEST_F(ADroppedRequest, BreaksItsPromiseWhateverItsOperation)
{
    using namespace kelarc;
    open();
    const Gate gate = holdWorker();
    fillQueue(128);
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::getRilVersion)), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::enableLogging, LOGGING_ZONE{1}, "x")), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::ATcmd, "AT")), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::getModuleSetting, "Power/Cpu")), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::setModuleSetting, "Power/Cpu", "\"std\"")), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::getCpuPower)), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::setCpuPower, CPU_POWER::MAXIMUM)), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::getCpuPsm)), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::getGnssStatus, SYSTEM::QZSS)), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::setGnssStatus, SYSTEM::QZSS, true)), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::getGnssRawVersion)), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::startRawGNSS)), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::forceStopGNSS)), "dropped");
    EXPECT_EQ(outcome::now(request(kelarc(), &KelArc::getLstaGnss, lsta::TECH::GPS)), "dropped");
}

TEST_F(ADroppedRequest, WasBegunAndCancelledByTheDestruction)
{
    open();
    arcsim::Answer failing;
    failing.code = 2;
    failing.latency = std::chrono::milliseconds(1);
    arcsim::answerAlways(Function::CurrentLSTA, failing);
    support::pauses::takeTime();
    std::future<std::tuple<int, bool, int>> query = request(kelarc(), &KelArc::getLstaGnss, kelarc::lsta::TECH::BEIDOU);
    ASSERT_TRUE(arcsim::waitForCalls(Function::CurrentLSTA, 1));
    destroyAsScripted();
    EXPECT_EQ(outcome::now(std::move(query)), "dropped");
}

}  // namespace
