#include "runner/Rounds.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

/// Contenders that note who was visited and measure what the test says.
struct Visits
{
    std::vector<std::string> order;

    bench::Contender contender(const std::string& name, std::function<double(std::size_t visit)> figure)
    {
        return {name, [this, name, figure = std::move(figure)] {
                    order.push_back(name);
                    const auto visits = static_cast<std::size_t>(std::count(order.begin(), order.end(), name));
                    return std::vector<double>{figure(visits)};
                }};
    }
    bench::Contender contender(const std::string& name, double figure)
    {
        return contender(name, [figure](std::size_t) { return figure; });
    }
};

TEST(Rounds, VisitEveryContenderOnceARoundAndOnceBefore)
{
    Visits visits;
    bench::Rounds rounds({visits.contender("a", 1), visits.contender("b", 1), visits.contender("c", 1)}, 1);
    rounds.run(10);
    ASSERT_THAT(visits.order, SizeIs(33));
    for (std::size_t round = 0; round < 11; ++round) {
        const auto first = visits.order.begin() + static_cast<std::ptrdiff_t>(3 * round);
        EXPECT_EQ(std::set<std::string>(first, first + 3), (std::set<std::string>{"a", "b", "c"})) << round;
    }
}

TEST(Rounds, ShuffleTheOrderAnewEveryTime)
{
    Visits visits;
    bench::Rounds rounds({visits.contender("a", 1), visits.contender("b", 1), visits.contender("c", 1)}, 1);
    rounds.run(50);
    std::set<std::string> first;
    std::set<std::string> orders;
    for (std::size_t visit = 0; visit < visits.order.size(); visit += 3) {
        first.insert(visits.order[visit]);
        orders.insert(visits.order[visit] + visits.order[visit + 1] + visits.order[visit + 2]);
    }
    EXPECT_THAT(first, SizeIs(3));
    EXPECT_THAT(orders, SizeIs(6));
}

TEST(Rounds, GoTheSameWayForTheSameSeedAndAnotherForAnother)
{
    const auto orderOf = [](unsigned seed) {
        Visits visits;
        bench::Rounds rounds({visits.contender("a", 1), visits.contender("b", 1), visits.contender("c", 1)}, seed);
        rounds.run(20);
        return visits.order;
    };
    EXPECT_EQ(orderOf(7), orderOf(7));
    EXPECT_NE(orderOf(7), orderOf(8));
}

TEST(Rounds, DoNotCountTheVisitBeforeTheFirst)
{
    Visits visits;
    bench::Rounds rounds({visits.contender("a", [](std::size_t visit) { return visit == 1 ? 1000. : 5.; })}, 1);
    rounds.run(1);
    EXPECT_DOUBLE_EQ(rounds.figure(0, 0).median, 5);
}

TEST(Rounds, CompareWithinARoundSoThatWhatSlowsAWholeRoundDoesNotCount)
{
    Visits visits;
    const auto slower = [](double figure) {
        return [figure](std::size_t visit) { return figure * static_cast<double>(visit * visit); };
    };
    bench::Rounds rounds({visits.contender("a", slower(3)), visits.contender("b", slower(2))}, 1);
    rounds.run(9);
    const bench::Quartiles ratio = rounds.ratio(0, 1, 0);
    EXPECT_DOUBLE_EQ(ratio.lower, 1.5);
    EXPECT_DOUBLE_EQ(ratio.median, 1.5);
    EXPECT_DOUBLE_EQ(ratio.upper, 1.5);
    EXPECT_GT(rounds.figure(0, 0).upper, rounds.figure(0, 0).lower);
}

TEST(Rounds, KeepTheContendersInTheOrderGiven)
{
    Visits visits;
    bench::Rounds rounds({visits.contender("ours", 1), visits.contender("theirs", 1)}, 3);
    rounds.run(2);
    EXPECT_THAT(rounds.names(), ElementsAre("ours", "theirs"));
}

}  // namespace
