#include "client/ArcSim.h"
#include "kelarc/KelArc.h"
#include "support/Await.h"
#include "unit/Interposed.h"

#include <gtest/gtest.h>
#include <string>

using namespace std::chrono_literals;

namespace {

struct Duration
{
    const char* name;
    std::chrono::nanoseconds duration;
    const char* shown;
};

class AttemptTime : public testing::TestWithParam<Duration>
{
};

TEST_P(AttemptTime, IsReadOffTheSteadyClockInWholeMillisecondsTruncated)
{
    arcsim::reset();
    interposed::HeldClock clock(100s);
    arcsim::Answer answer;
    answer.during = [&clock] { clock.advance(GetParam().duration); };
    arcsim::answerAlways(arcsim::Function::ResetAGNSS, answer);

    std::string line;
    support::Await<int> done;
    {
        kelarc::KelArc modem([&line](int, const char* text) { line = text; });
        modem.resetAGNSS(done.callback());
        // A limit by the clock that the call moves on, by 50 days at most.
        ASSERT_TRUE(done.wait(std::chrono::hours(24 * 365)));
    }
    arcsim::reset();

    EXPECT_EQ(line, std::string("KelArc::logArcResult.1224: [15] ARC_ResetAGNSS() took ") + GetParam().shown +
                        " ms: Command has been executed successfully (0)");
}

INSTANTIATE_TEST_SUITE_P(Table, AttemptTime,
                         testing::Values(Duration{"nothing", 0ns, "0"}, Duration{"almostOne", 999'999ns, "0"},
                                         Duration{"one", 1'000'000ns, "1"}, Duration{"almostFive", 4'999'999ns, "4"},
                                         Duration{"five", 5'000'000ns, "5"}, Duration{"anHour", 1h, "3600000"},
                                         // beyond 32 bits the count starts again
                                         Duration{"moreThanItsTypeHolds", 4'294'967'301ms, "5"}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
