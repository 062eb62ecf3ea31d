#include "runner/Statistics.h"

#include <gtest/gtest.h>

namespace {

TEST(Quartiles, OfFiveValuesAreTheSecondThirdAndFourth)
{
    const bench::Quartiles quartiles = bench::quartilesOf({50, 10, 40, 20, 30});
    EXPECT_DOUBLE_EQ(quartiles.lower, 20);
    EXPECT_DOUBLE_EQ(quartiles.median, 30);
    EXPECT_DOUBLE_EQ(quartiles.upper, 40);
}

TEST(Quartiles, LieOnTheLineBetweenTwoValues)
{
    const bench::Quartiles quartiles = bench::quartilesOf({4, 1, 3, 2});
    EXPECT_DOUBLE_EQ(quartiles.lower, 1.75);
    EXPECT_DOUBLE_EQ(quartiles.median, 2.5);
    EXPECT_DOUBLE_EQ(quartiles.upper, 3.25);
}

TEST(Quartiles, OfOneValueAreThatValue)
{
    const bench::Quartiles quartiles = bench::quartilesOf({7});
    EXPECT_DOUBLE_EQ(quartiles.lower, 7);
    EXPECT_DOUBLE_EQ(quartiles.median, 7);
    EXPECT_DOUBLE_EQ(quartiles.upper, 7);
}

TEST(Quantile, ReachesFromTheLeastToTheGreatestValue)
{
    const std::vector<double> values{3, 9, 5, 1, 7};
    EXPECT_DOUBLE_EQ(bench::quantileOf(values, 0), 1);
    EXPECT_DOUBLE_EQ(bench::quantileOf(values, 1), 9);
    EXPECT_DOUBLE_EQ(bench::quantileOf(values, 0.99), 8.92);
}

}  // namespace
