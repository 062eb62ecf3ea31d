#include "support/KelArcTest.h"

#include <climits>

namespace contract {
namespace {

using support::Function;
using ::testing::EndsWith;
using ::testing::StartsWith;

/// The line of one attempt that ends with `code`, as it comes from the library, elapsed time included.
class ResultText : public support::KelArcTest
{
protected:
    std::string rawLineOf(int code)
    {
        journal.clear();
        arcsim::clearAnswers(Function::ForceStopGNSS);
        script(Function::ForceStopGNSS, {code});
        kelarc().forceStopGNSS([](int) {});
        settle();
        return journal.entries(support::Kind::line).at(0).raw;
    }
};

TEST_F(ResultText, IsPublishedForEachOfTheFortyCodes)
{
    for (int code = 0; code < 40; ++code) {
        const std::string line = rawLineOf(code);
        EXPECT_THAT(line, StartsWith("KelArc::logArcResult.1224: [-1] ARC_ForceStopGNSS() took "));
        EXPECT_THAT(line, EndsWith(" ms: " + support::resultText(code) + " (" + std::to_string(code) + ")"));
    }
}

TEST_F(ResultText, IsUnknownResultForEveryOtherCode)
{
    for (const int code : {-1, -5, 40, 41, 100, 255, 256, 1000, INT_MIN, INT_MAX})
        EXPECT_THAT(rawLineOf(code), EndsWith(" ms: Unknown result (" + std::to_string(code) + ")"));
}

TEST_F(ResultText, GoesWithLevel2OnSuccess3ForTheUncountedCodesAnd4Otherwise)
{
    for (int code = -2; code < 42; ++code) {
        rawLineOf(code);
        const std::string level = code == 0 ? "2 " : code == 15 || code == 26 ? "3 " : "4 ";
        EXPECT_THAT(lines().at(0), StartsWith(level)) << code;
    }
}

TEST_F(ResultText, FollowsTheElapsedTimeAsADecimalNumber)
{
    EXPECT_THAT(rawLineOf(0), ::testing::ContainsRegex(" took [0-9]+ ms: "));
}

}  // namespace
}  // namespace contract
