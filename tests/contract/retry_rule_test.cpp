#include "contract/CallTest.h"

#include <algorithm>
#include <climits>
#include <numeric>

namespace contract {
namespace {

using support::resultLine;

std::vector<int> allCodes()
{
    std::vector<int> codes(40);
    std::iota(codes.begin(), codes.end(), 0);
    codes.insert(codes.end(), {-1, -5, 40, INT_MIN, INT_MAX});
    return codes;
}

/// What a task that meets these codes logs; calls beyond them fail with `rest` while the budget lasts.
struct Course
{
    Strings lines;
    unsigned failures = 0;
    int lastCode = 0;
};

Course courseOf(const PublishedCall& call, const std::vector<int>& codes, int rest)
{
    Course course;
    int left = call.budget;
    for (std::size_t attempt = 0;; ++attempt) {
        const int code = attempt < codes.size() ? codes[attempt] : rest;
        if (code != 0 && code != 15 && code != 26 && left > 0)
            --left;
        course.lines.push_back(resultLine(left, call.callText, code));
        course.lastCode = code;
        if (code == 0)
            return course;
        ++course.failures;
        if (left == 0)
            return course;
    }
}

class RetryRule : public EveryCall
{
protected:
    /// The given code at the given attempt, failures with 2 before it; after it failures while attempts are counted,
    /// success where they are not.
    void check(int code, int position)
    {
        SCOPED_TRACE("code " + std::to_string(code) + " at attempt " + std::to_string(position));
        const PublishedCall& call = GetParam();
        std::vector<int> codes(static_cast<std::size_t>(position), 2);
        codes.back() = code;
        const int rest = call.budget == 15 ? 2 : 0;
        prepare(call);
        script(call.function, codes);
        arcsim::Answer after = support::success();
        after.code = rest;
        arcsim::answerAlways(call.function, after);
        run(call);

        const Course course = courseOf(call, codes, rest);
        Strings expected = course.lines;
        if (course.lastCode != 0 && call.tell != Tell::never)
            expected.push_back(support::gaveUpLine(call.giveUpLevel, call.giveUpLine, call.callText));
        EXPECT_EQ(linesOf(call), expected);
        EXPECT_EQ(support::pauses::count(), course.failures);
        const bool answered =
            call.answers != Answers::nothing && !(call.answers == Answers::onFailure && course.lastCode == 0);
        EXPECT_EQ(answers(), answered ? Strings{answerText(call, course.lastCode)} : Strings{});
    }
};

TEST_P(RetryRule, HoldsForEveryCodeAtTheFirstTheFourteenthAndTheFifteenthAttempt)
{
    for (const int code : allCodes())
        for (const int position : {1, 14, 15})
            check(code, position);
}

std::vector<PublishedCall> callsWithCodes()
{
    std::vector<PublishedCall> calls = publishedCalls();
    calls.erase(std::remove_if(calls.begin(), calls.end(),
                               [](const PublishedCall& call) {
                                   // Returns a text, not a code: a missing one is always 32.
                                   return call.function == arcsim::Function::GetArcVersion;
                               }),
                calls.end());
    return calls;
}

INSTANTIATE_TEST_SUITE_P(Published, RetryRule, ::testing::ValuesIn(callsWithCodes()), support::ByName());

TEST_F(CallTest, ACodeThatDoesNotCountIsAskedAgainWithoutEnd)
{
    for (const PublishedCall& call : callsWithCodes())
        for (const int code : {15, 26}) {
            prepare(call);
            failTimes(call.function, 100, code);
            run(call);
            Strings expected(100, resultLine(call.budget, call.callText, code));
            expected.push_back(resultLine(call.budget, call.callText, 0));
            EXPECT_EQ(linesOf(call), expected) << call;
            EXPECT_EQ(support::pauses::count(), 100U) << call;
        }
}

TEST_F(CallTest, AnAnswerOnlyComesAfterTheLastOfManyUncountedFailures)
{
    for (const PublishedCall& call : callsWithCodes()) {
        if (call.answers != Answers::once)
            continue;
        prepare(call);
        failTimes(call.function, 40, 15);
        std::size_t answersMeanwhile = 0;
        duringPause(40, [&] { answersMeanwhile = answers().size(); });
        run(call);
        EXPECT_EQ(answersMeanwhile, 0U) << call;
        EXPECT_EQ(answers(), Strings{answerText(call, 0)}) << call;
    }
}

}  // namespace
}  // namespace contract
