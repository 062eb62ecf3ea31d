#include "seeds/Program.h"

#include <gtest/gtest.h>

#include <set>

namespace seeds {
namespace {

TEST(AProgram, FollowsFromItsSeedAlone)
{
    std::set<std::string> programs;
    for (std::uint64_t seed = 1; seed <= 50; ++seed) {
        EXPECT_EQ(wordsOf(programOf(seed)), wordsOf(programOf(seed)));
        programs.insert(wordsOf(programOf(seed)));
    }
    EXPECT_EQ(programs.size(), 50U);
}

TEST(TheSeedsOfCi, AskForEveryOperationAndTakeEveryStep)
{
    std::set<std::string> operationsAsked;
    std::set<Step::Kind> kinds;
    const auto see = [&](const Step& step) {
        kinds.insert(step.kind);
        if (step.kind == Step::Kind::request)
            operationsAsked.insert(operations()[step.request.operation].name);
    };
    for (std::uint64_t seed = 1; seed <= 200; ++seed)
        for (const Phase& phase : programOf(seed).phases) {
            for (const Step& step : phase.first)
                see(step);
            for (const Phase::Later& later : phase.later)
                see(later.step);
        }
    EXPECT_EQ(operationsAsked.size(), 34U);
    constexpr std::size_t kKindsDrawn = 16;  // all but the one that ends what would be repeated for ever
    EXPECT_EQ(kinds.size(), kKindsDrawn);
}

}  // namespace
}  // namespace seeds
