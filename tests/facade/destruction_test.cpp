#include "support/KelArcTest.h"

namespace {

using support::Function;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Destruction : public support::KelArcTest
{
};

TEST_F(Destruction, OfManyClosedObjectsInARowEnds)
{
    for (int i = 0; i < 200; ++i)
        kelarc::KelArc object(journal.logCallback());
    EXPECT_THAT(journal.texts(), IsEmpty());
}

TEST_F(Destruction, OfManyOpenObjectsInARowEnds)
{
    for (int i = 0; i < 100; ++i) {
        restart();
        open();
    }
    destroy();
    EXPECT_EQ(support::pauses::count(), 0U);
}

TEST_F(Destruction, WaitsForTheRunningTask)
{
    open();
    arcsim::Answer slow;
    slow.latency = std::chrono::milliseconds(30);
    arcsim::answerNext(Function::ResetAGNSS, {slow});
    kelarc().resetAGNSS(answer());
    ASSERT_TRUE(arcsim::waitForCalls(Function::ResetAGNSS, 1));
    destroyAsScripted();
    EXPECT_THAT(answers(), ElementsAre("answer(0)"));
}

TEST_F(Destruction, LeavesWaitingRequestsUncalledAndDestroysThem)
{
    open();
    arcsim::Answer slow;
    slow.latency = std::chrono::milliseconds(20);
    arcsim::answerAlways(Function::ResetAGNSS, slow);
    const auto witness = std::make_shared<int>();
    for (int i = 0; i < 100; ++i)
        kelarc().resetAGNSS(answer().holding(witness));
    ASSERT_TRUE(arcsim::waitForCalls(Function::ResetAGNSS, 1));
    destroyAsScripted();
    EXPECT_LT(answers().size(), 100U);
    EXPECT_EQ(answers().size(), callCount(Function::ResetAGNSS));
    EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(Destruction, EndsWhatIsRepeatedWhileActive)
{
    open();
    arcsim::Answer busy;
    busy.code = 3;
    busy.latency = std::chrono::milliseconds(1);
    arcsim::answerAlways(Function::StartGNSSraw, busy);
    kelarc().startRawGNSS(answer());
    ASSERT_TRUE(arcsim::waitForCalls(Function::StartGNSSraw, 3));
    destroyAsScripted();
    EXPECT_THAT(answers(), ElementsAre("answer(3, '')"));
}

TEST_F(Destruction, LetsGoOfTheLogCallback)
{
    const auto witness = std::make_shared<int>();
    {
        const kelarc::KelArc object([witness](int, const char*) {});
        EXPECT_EQ(witness.use_count(), 2);
    }
    EXPECT_EQ(witness.use_count(), 1);
}

}  // namespace
