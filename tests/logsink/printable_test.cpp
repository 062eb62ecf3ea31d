#include "kelarc/logsink.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using kelarc::logsink::printable;
using namespace std::string_view_literals;

/// A code point as UTF-8 would write it, were it allowed.
std::string encoded(unsigned long point)
{
    const auto continuation = [point](unsigned shift) { return static_cast<char>(0x80 | (point >> shift & 0x3f)); };
    if (point < 0x80)
        return {static_cast<char>(point)};
    if (point < 0x800)
        return {static_cast<char>(0xc0 | point >> 6), continuation(0)};
    if (point < 0x10000)
        return {static_cast<char>(0xe0 | point >> 12), continuation(6), continuation(0)};
    return {static_cast<char>(0xf0 | point >> 18), continuation(12), continuation(6), continuation(0)};
}

TEST(Printable, LeavesOrdinaryTextAsItIs)
{
    for (const std::string_view text :
         {""sv, "KelArc::logArcResult.1224: [15] Get ARC_CheckModuleSetting(\"Sens/MinElevAngle\") took 12 ms"sv,
          " !\"#$%&'()*+,-./0123456789:;<=>?@AZ[]^_`az{|}~"sv,
          "Gr\xc3\xbc\xc3\x9f"
          "e \xe2\x82\xac \xf0\x9f\x9b\xb0"sv})
        EXPECT_EQ(printable(text), text);
}

TEST(Printable, LeavesABackslashAsItIs)
{
    EXPECT_EQ(printable("C:\\new\\x1b \\"), "C:\\new\\x1b \\");
}

TEST(Printable, ShowsTheControlCharactersOfAscii)
{
    EXPECT_EQ(printable("\0\1\2\3\4\5\6\7\b"sv), "\\x00\\x01\\x02\\x03\\x04\\x05\\x06\\x07\\x08");
    EXPECT_EQ(printable("\t\n\v\f\r\016\017"), "\\t\\n\\x0b\\x0c\\r\\x0e\\x0f");
    EXPECT_EQ(printable("\020\021\022\023\024\025\026\027"), "\\x10\\x11\\x12\\x13\\x14\\x15\\x16\\x17");
    EXPECT_EQ(printable("\030\031\032\033\034\035\036\037 "), "\\x18\\x19\\x1a\\x1b\\x1c\\x1d\\x1e\\x1f ");
    EXPECT_EQ(printable("~\177"), "~\\x7f");
}

TEST(Printable, ShowsTheControlCharactersOfC1ByTheirBytes)
{
    EXPECT_EQ(printable("a\xc2\x80\xc2\x85\xc2\x9b"
                        "31m\xc2\x9f"),
              "a\\xc2\\x80\\xc2\\x85\\xc2\\x9b31m\\xc2\\x9f");
    EXPECT_EQ(printable("\xc2\xa0\xc3\x80\xc3\x9f"), "\xc2\xa0\xc3\x80\xc3\x9f");  // their neighbours
}

TEST(Printable, ShowsBytesThatBeginNoCharacter)
{
    EXPECT_EQ(printable("\x80 \xbf \xc0 \xc1 \xf5 \xff"), "\\x80 \\xbf \\xc0 \\xc1 \\xf5 \\xff");
    EXPECT_EQ(printable("\x9b"
                        "31m"),
              "\\x9b31m");
    EXPECT_EQ(printable("\xc3\xa4\xa4"), "\xc3\xa4\\xa4");  // one continuation too many
}

TEST(Printable, ShowsCharactersThatAreLongerThanNeeded)
{
    EXPECT_EQ(printable("\xc0\x8a"), "\\xc0\\x8a");
    EXPECT_EQ(printable("\xc1\xbf"), "\\xc1\\xbf");
    EXPECT_EQ(printable("\xe0\x80\x8a \xe0\x9f\xbf"), "\\xe0\\x80\\x8a \\xe0\\x9f\\xbf");
    EXPECT_EQ(printable("\xf0\x80\x80\x8a \xf0\x8f\xbf\xbf"), "\\xf0\\x80\\x80\\x8a \\xf0\\x8f\\xbf\\xbf");
    EXPECT_EQ(printable("\xf8\x88\x80\x80\x80"), "\\xf8\\x88\\x80\\x80\\x80");
}

TEST(Printable, ShowsSurrogatesAndWhatIsBeyondTheLastCharacter)
{
    EXPECT_EQ(printable("\xed\xa0\x80 \xed\xbf\xbf"), "\\xed\\xa0\\x80 \\xed\\xbf\\xbf");
    EXPECT_EQ(printable("\xf4\x90\x80\x80 \xf5\x80\x80\x80"), "\\xf4\\x90\\x80\\x80 \\xf5\\x80\\x80\\x80");
}

TEST(Printable, ShowsWhatIsLeftOfACutCharacterAndGoesOnBehindIt)
{
    EXPECT_EQ(printable("\xc3"), "\\xc3");
    EXPECT_EQ(printable("\xe2\x82"), "\\xe2\\x82");
    EXPECT_EQ(printable("\xf0\x9f\x9b"), "\\xf0\\x9f\\x9b");
    EXPECT_EQ(printable("\xc3x\xe2\x82x\xe2x\xf0\x9f\x9bx"), "\\xc3x\\xe2\\x82x\\xe2x\\xf0\\x9f\\x9bx");
    EXPECT_EQ(printable("\xe2\xc3\xa4\xf0\x9f\xe2\x82\xac"), "\\xe2\xc3\xa4\\xf0\\x9f\xe2\x82\xac");
    EXPECT_EQ(printable("\xe2\x82\n\xf0\x9f\x9b\033"), "\\xe2\\x82\\n\\xf0\\x9f\\x9b\\x1b");
    EXPECT_EQ(printable("\xe2\x82\xc0\xf0\x9f\x9b\xc0"), "\\xe2\\x82\\xc0\\xf0\\x9f\\x9b\\xc0");
}

TEST(Printable, FindsNoCharacterInAnEmptyText)
{
    EXPECT_EQ(kelarc::logsink::detail::utf8Length(""), 0U);
    EXPECT_EQ(printable(""), "");
}

TEST(Printable, LooksNotBeyondTheEndOfItsText)
{
    EXPECT_EQ(printable("\xe2\x82\xac"sv.substr(0, 2)), "\\xe2\\x82");
}

TEST(Printable, LeavesAllCharactersBehindC1AsTheyAreButHalvesOfSurrogatePairs)
{
    for (unsigned long point = 0xa0; point < 0x110000; ++point) {
        const std::string character = encoded(point);
        const bool isHalf = point >= 0xd800 && point < 0xe000;
        ASSERT_EQ(printable(character) == character, !isHalf) << std::hex << point;
    }
    for (unsigned long point = 0x110000; point < 0x200000; ++point)
        ASSERT_EQ(printable(encoded(point)).size(), 16U) << std::hex << point;
}

}  // namespace
