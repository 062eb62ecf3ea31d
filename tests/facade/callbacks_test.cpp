#include "facade/AllOperations.h"

#include <memory>

namespace {

using support::Kind;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class EveryOperation : public support::KelArcTest, public ::testing::WithParamInterface<Operation>
{
};

TEST_P(EveryOperation, AnswersExactlyOnceOnTheWorkerThread)
{
    open();
    GetParam().request(kelarc(), answer());
    settle();
    const auto answered = journal.entries(Kind::answer);
    ASSERT_EQ(answered.size(), 1U);
    EXPECT_EQ(answered.front().thread, workerThread());
    EXPECT_NE(answered.front().thread, std::this_thread::get_id());
}

TEST_P(EveryOperation, CallsTheModemFromTheWorkerThreadOnly)
{
    open();
    GetParam().request(kelarc(), answer());
    settle();
    for (const arcsim::Call& call : arcsim::calls())
        EXPECT_EQ(call.thread, workerThread());
    EXPECT_NE(workerThread(), std::this_thread::get_id());
}

TEST_P(EveryOperation, ReturnsBeforeItsTaskRuns)
{
    open();
    const support::Gate gate = holdWorker();
    GetParam().request(kelarc(), answer());
    EXPECT_THAT(answers(), IsEmpty());
    EXPECT_EQ(kelarc().getPendingTasks(), 1U);
    gate.open();
    settle();
    EXPECT_EQ(answers().size(), 1U);
}

TEST_P(EveryOperation, LeavesOrTakesTheCallersFunctionAsPublished)
{
    open();
    const bool stillCallable = GetParam().request(kelarc(), answer());
    EXPECT_EQ(stillCallable, GetParam().copiesCallback);
    settle();
}

TEST_P(EveryOperation, LetsGoOfTheCallbackSoonAfterTheAnswer)
{
    open();
    const auto witness = std::make_shared<int>();
    GetParam().request(kelarc(), answer().holding(witness));
    settle();
    // The finished task is destroyed when the worker comes to its next one.
    kelarc().getArcVersion(answer("next"));
    ASSERT_TRUE(journal.waitFor(Kind::answer, 2));
    EXPECT_EQ(witness.use_count(), 1);
}

TEST_P(EveryOperation, IsDroppedWithItsCallbackWhen128RequestsWait)
{
    open();
    const support::Gate gate = holdWorker();
    for (int i = 0; i < 128; ++i)
        kelarc().getArcVersion([](int, std::string&&) {});
    ASSERT_EQ(kelarc().getPendingTasks(), 128U);

    const auto witness = std::make_shared<int>();
    GetParam().request(kelarc(), answer().holding(witness));
    EXPECT_EQ(witness.use_count(), 1) << "a dropped request keeps its callback";
    EXPECT_EQ(kelarc().getPendingTasks(), 128U);
    gate.open();
    settle();
    EXPECT_THAT(answers(), IsEmpty());
}

TEST_P(EveryOperation, LetsGoOfTheCallbackWithTheObject)
{
    open();
    const auto witness = std::make_shared<int>();
    {
        const support::Gate gate = holdWorker();
        GetParam().request(kelarc(), answer().holding(witness));
        EXPECT_GT(witness.use_count(), 1);
    }
    destroy();
    EXPECT_EQ(witness.use_count(), 1);
}

INSTANTIATE_TEST_SUITE_P(All, EveryOperation, ::testing::ValuesIn(answeringOperations()), support::ByName());

class Callbacks : public support::KelArcTest
{
};

TEST_F(Callbacks, RequestsAreAnsweredInTheOrderInWhichTheyWereMade)
{
    open();
    {
        const support::Gate gate = holdWorker();
        kelarc().getSbasStatus(answer("first"));
        kelarc().resetAGNSS(answer("second"));
        kelarc().getLstaGnss(kelarc::lsta::TECH{1}, answer("third"));
        kelarc().ATcmd("AT", answer("fourth"));
    }
    settle();
    std::vector<std::string> labels;
    for (const std::string& text : answers())
        labels.push_back(text.substr(0, text.find('(')));
    EXPECT_THAT(labels, ElementsAre("first", "second", "third", "fourth"));
}

TEST_F(Callbacks, ARequestMayBeMadeFromInsideAnAnswer)
{
    open();
    kelarc().resetAGNSS([this](int) { kelarc().getArcVersion(answer("inner")); });
    ASSERT_TRUE(journal.waitFor(Kind::answer, 1));
    EXPECT_THAT(answers(), ElementsAre("inner(0, 'ArcRilD 1.0 (simulated)')"));
}

TEST_F(Callbacks, TheFullQueueTakesRequestsAgainWhenTheWorkerHasTakenOne)
{
    open();
    {
        const support::Gate first = holdWorker();
        for (int i = 0; i < 129; ++i)
            kelarc().enableLogging(kelarc::LOGGING_ZONE{i}, "", answer());
        EXPECT_EQ(kelarc().getPendingTasks(), 128U);
    }
    settle();
    EXPECT_EQ(answers().size(), 128U);
    EXPECT_EQ(lastArguments(support::Function::EnableLogging).front(), "127");
    kelarc().getArcVersion(answer());
    settle();
    EXPECT_EQ(answers().size(), 129U);
}

TEST_F(Callbacks, ARefusedRequestUsesUpNoTaskId)
{
    open();
    std::uint32_t lastId = 0;
    {
        const support::Gate gate = holdWorker();
        const std::uint32_t heldId = kelarc().getRunningTaskId();
        for (int i = 0; i < 140; ++i)
            kelarc().getArcVersion([](int, std::string&&) {});
        lastId = heldId + 128;
    }
    settle();
    kelarc().resetAGNSS([&](int) { journal.add(Kind::answer, std::to_string(kelarc().getRunningTaskId())); });
    settle();
    EXPECT_THAT(answers(), ElementsAre(std::to_string(lastId + 1)));
}

}  // namespace
