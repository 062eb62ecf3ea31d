#include "protocol/LineBuffer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using arcsim::LineBuffer;

using Lines = std::vector<std::string>;

Lines taken(LineBuffer& buffer)
{
    Lines lines;
    while (auto line = buffer.take())
        lines.push_back(*line);
    return lines;
}

TEST(LineBuffer, HasNothingBeforeALineIsComplete)
{
    LineBuffer buffer;
    EXPECT_EQ(buffer.take(), std::nullopt);
    EXPECT_FALSE(buffer.isOverlong());
    buffer.add("");
    EXPECT_EQ(buffer.take(), std::nullopt);
    buffer.add("abc");
    EXPECT_EQ(buffer.take(), std::nullopt);
    EXPECT_EQ(buffer.take(), std::nullopt);
    buffer.add("\n");
    EXPECT_EQ(buffer.take(), "abc");
    EXPECT_EQ(buffer.take(), std::nullopt);
}

TEST(LineBuffer, GivesTheSameLinesWhereverTheyAreCut)
{
    const std::string text = "first\n\nthird, longer\nx\n";
    for (std::size_t cut = 0; cut <= text.size(); ++cut)
        for (std::size_t second = cut; second <= text.size(); ++second) {
            LineBuffer buffer;
            Lines lines;
            for (const std::string& part : {text.substr(0, cut), text.substr(cut, second - cut), text.substr(second)}) {
                buffer.add(part);
                for (const std::string& line : taken(buffer))
                    lines.push_back(line);
            }
            EXPECT_EQ(lines, (Lines{"first", "", "third, longer", "x"})) << cut << ' ' << second;
        }
}

TEST(LineBuffer, GivesTheSameLinesWhenItIsAskedOnlyAtTheEnd)
{
    LineBuffer buffer;
    for (const char c : std::string("one\ntwo\nthr"))
        buffer.add(std::string(1, c));
    EXPECT_EQ(taken(buffer), (Lines{"one", "two"}));
    buffer.add("ee\n\n");
    EXPECT_EQ(taken(buffer), (Lines{"three", ""}));
}

TEST(LineBuffer, TakesWhatIsAddedBetweenTheLinesOfOneChunk)
{
    LineBuffer buffer;
    buffer.add("a\nb\nc");
    EXPECT_EQ(buffer.take(), "a");
    buffer.add("d\ne");
    EXPECT_EQ(buffer.take(), "b");
    EXPECT_EQ(buffer.take(), "cd");
    EXPECT_EQ(buffer.take(), std::nullopt);
    buffer.add("\n");
    EXPECT_EQ(buffer.take(), "e");
}

TEST(LineBuffer, GivesManyLinesOfOneChunk)
{
    std::string text;
    for (int i = 0; i < 5000; ++i)
        text += std::to_string(i) + '\n';
    LineBuffer buffer;
    buffer.add(text + "rest");
    const Lines lines = taken(buffer);
    ASSERT_EQ(lines.size(), 5000U);
    for (int i = 0; i < 5000; ++i)
        EXPECT_EQ(lines[static_cast<std::size_t>(i)], std::to_string(i));
    buffer.add("\n");
    EXPECT_EQ(buffer.take(), "rest");
}

TEST(LineBuffer, GivesEmptyLinesToo)
{
    LineBuffer buffer;
    buffer.add("\n\n\n");
    EXPECT_EQ(taken(buffer), (Lines{"", "", ""}));
}

TEST(LineBuffer, KeepsBytesThatAreNoText)
{
    LineBuffer buffer;
    const std::string line("\0\r\xFF\x80", 4);
    buffer.add(line + '\n');
    EXPECT_EQ(buffer.take(), line);
}

TEST(LineBuffer, AcceptsALineOf65536Bytes)
{
    LineBuffer buffer;
    buffer.add(std::string(65536, 'x'));
    EXPECT_EQ(buffer.take(), std::nullopt);
    EXPECT_FALSE(buffer.isOverlong()) << "its end may be what comes next";
    buffer.add("\n");
    EXPECT_EQ(buffer.take(), std::string(65536, 'x'));
}

TEST(LineBuffer, KnowsAByteMoreAsTooLongBeforeItsEndHasCome)
{
    LineBuffer buffer;
    buffer.add(std::string(65536, 'x'));
    EXPECT_EQ(buffer.take(), std::nullopt);
    buffer.add("x");
    EXPECT_EQ(buffer.take(), std::nullopt);
    EXPECT_TRUE(buffer.isOverlong());
}

TEST(LineBuffer, CountsOnlyWhatHasNotBeenTaken)
{
    LineBuffer buffer;
    buffer.add(std::string(60000, 'a') + '\n' + std::string(65536, 'b'));
    EXPECT_EQ(buffer.take(), std::string(60000, 'a'));
    EXPECT_EQ(buffer.take(), std::nullopt);
    EXPECT_FALSE(buffer.isOverlong());
    buffer.add("b");
    EXPECT_EQ(buffer.take(), std::nullopt);
    EXPECT_TRUE(buffer.isOverlong());
}

TEST(LineBuffer, GivesATooLongLineThatIsComplete)
{
    LineBuffer buffer;
    buffer.add(std::string(65537, 'x') + '\n');
    const auto line = buffer.take();
    ASSERT_TRUE(line);
    EXPECT_EQ(line->size(), 65537U) << "refusing it is for the one who takes it";
}

}  // namespace
