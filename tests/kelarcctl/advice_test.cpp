// What kelarcctl says about result codes is what the guide says.

#include "kelarcctl/Advice.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace kelarcctl {
namespace {

std::string guidePage()
{
    std::ifstream file(KELARC_GUIDE "/troubleshooting.md");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

TEST(Advice, IsThatOfTheGuide)
{
    const std::string page = guidePage();
    for (int code = 0; code <= kLastKnownCode + 1; ++code) {
        const Advice& advice = adviceOn(code);
        const std::string name = code > kLastKnownCode ? "other" : std::to_string(code);
        const std::size_t begin = page.find("\n| " + name + " | `");
        ASSERT_NE(begin, std::string::npos) << name;
        const std::string row = page.substr(begin + 1, page.find('\n', begin + 1) - begin - 1);
        const std::string end = "` | " + std::string(advice.cause) + " | " + advice.next + " |";
        EXPECT_TRUE(row.size() > end.size() && row.compare(row.size() - end.size(), end.size(), end) == 0)
            << row << "\nshould end in\n"
            << end;
    }
}

TEST(Advice, IsOfTheCodeThatWasAskedFor)
{
    for (int code = 0; code <= 39; ++code)
        EXPECT_EQ(adviceOn(code).code, code);
    for (const int code : {-1, 40, 99, -2147483647 - 1, 2147483647})
        EXPECT_EQ(adviceOn(code).code, -1) << code;
}

TEST(Advice, DiffersWhereTheStepDiffers)
{
    std::set<std::string> steps;
    for (const int code : {1, 2, 3, 15, 21, 24, 31, 34, 39})
        EXPECT_TRUE(steps.insert(adviceOn(code).next).second) << code;
    EXPECT_STREQ(adviceOn(4).next, adviceOn(37).next);
}

TEST(Advice, TellsWhatWaitingMends)
{
    for (const int code : {2, 3, 12, 15, 26, 39, 77})
        EXPECT_TRUE(adviceOn(code).mayPass) << code;
    for (const int code : {4, 13, 16, 21, 24, 31, 34})
        EXPECT_FALSE(adviceOn(code).mayPass) << code;
}

}  // namespace
}  // namespace kelarcctl
