#include "runner/Table.h"

#include <gtest/gtest.h>

namespace {

bench::Rounds measured()
{
    bench::Rounds rounds({{"ours",
                           [] {
                               return std::vector<double>{1.5, 30};
                           }},
                          {"condition variable",
                           [] {
                               return std::vector<double>{1, 20};
                           }}},
                         1);
    rounds.run(3);
    return rounds;
}

TEST(Comparison, ShowsMediansAndTheRatioOfTheFirstToEachOther)
{
    const bench::Table table = bench::comparison("Hand-off", "On one CPU.", {{"p50 us", 2}, {"p99 us", 0}}, measured());
    EXPECT_EQ(bench::textOf(table), "## Hand-off\n"
                                    "On one CPU.\n"
                                    "                    p50 us         ours to it  p99 us         ours to it\n"
                                    "ours                  1.50                         30\n"
                                    "condition variable    1.00  1.50x (1.50-1.50)      20  1.50x (1.50-1.50)\n");
}

TEST(Comparison, GivesProgramsMediansWithQuartilesAndRatios)
{
    const bench::Table table = bench::comparison("Hand-off", "On one CPU.", {{"p50 us", 2}, {"p99 us", 0}}, measured());
    const nlohmann::ordered_json json = bench::jsonOf(table);
    EXPECT_EQ(json["question"], "Hand-off");
    EXPECT_EQ(json["note"], "On one CPU.");
    ASSERT_EQ(json["rows"].size(), 2U);
    EXPECT_EQ(json["rows"][0]["name"], "ours");
    EXPECT_EQ(json["rows"][0]["p50 us"].dump(), R"({"lower":1.5,"median":1.5,"upper":1.5})");
    EXPECT_EQ(json["rows"][1]["p99 us"].dump(),
              R"({"lower":20.0,"median":20.0,"upper":20.0,"ratio":{"lower":1.5,"median":1.5,"upper":1.5}})");
}

TEST(Table, LeavesOutANoteThatIsEmptyAndTheBlanksBehindTheLastCell)
{
    const bench::Table table{"Size", "", {"bytes", "limit"}, {{"queue", {"9", "12"}, {}}, {"library", {"40", ""}, {}}}};
    EXPECT_EQ(bench::textOf(table), "## Size\n"
                                    "         bytes  limit\n"
                                    "queue        9     12\n"
                                    "library     40\n");
}

TEST(Shown, RoundsToTheDecimalsAskedFor)
{
    EXPECT_EQ(bench::shown(1.005, 1), "1.0");
    EXPECT_EQ(bench::shown(12.5678, 2), "12.57");
    EXPECT_EQ(bench::shown(1234567, 0), "1234567");
}

}  // namespace
