#include "protocol/Text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

using arcsim::bytesOf;
using arcsim::bytesOfHex;
using arcsim::charactersOf;
using arcsim::hexOf;
using namespace std::string_literals;

using Bytes = std::vector<unsigned char>;

TEST(ProtocolText, WritesBytesFrom80OnAsTheCharactersWithTheirNumbers)
{
    EXPECT_EQ(charactersOf(""), "");
    EXPECT_EQ(charactersOf("AT+CGMR\r\n"), "AT+CGMR\r\n");
    EXPECT_EQ(charactersOf("\x7F"), "\x7F");
    EXPECT_EQ(charactersOf("\x80"), "\xC2\x80");
    EXPECT_EQ(charactersOf("\xBF"), "\xC2\xBF");
    EXPECT_EQ(charactersOf("\xC0"), "\xC3\x80");
    EXPECT_EQ(charactersOf("\xE9"), "\xC3\xA9");
    EXPECT_EQ(charactersOf("\xFF"), "\xC3\xBF");
    EXPECT_EQ(charactersOf("\0"s), "\0"s);
}

TEST(ProtocolText, KeepsEveryByte)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        EXPECT_EQ(charactersOf(one).size(), byte < 128 ? 1U : 2U) << byte;
        EXPECT_EQ(bytesOf(charactersOf(one)), one) << byte;
        all += one;
    }
    EXPECT_EQ(charactersOf(all).size(), 384U);
    EXPECT_EQ(bytesOf(charactersOf(all)), all);
}

TEST(ProtocolText, ReadsCharactersUpToFF)
{
    EXPECT_EQ(bytesOf("plain"), "plain");
    EXPECT_EQ(bytesOf("\xC2\x80"), "\x80");
    EXPECT_EQ(bytesOf("\xC3\xBF"), "\xFF");
    EXPECT_EQ(bytesOf("a\xC3\xA9z"), "a\xE9z");
    EXPECT_EQ(bytesOf("\0"s), "\0"s);
}

TEST(ProtocolText, RefusesWhatHasNoByteOfItsOwn)
{
    const std::string_view refused[] = {
        "\xC4\x80",          // U+0100, the first character beyond
        "\xC4\xBF",          // and another one with the same beginning
        "\xE2\x82\xAC",      // the euro sign
        "\xF0\x9F\x98\x80",  // beyond 16 bits
        "\x80",              // the second half of a character alone
        "\xBF",
        "\xC2",      // the first half alone
        "\xC3",      // and that of the other 64 characters
        "a\xC3",     // at the end
        "\xC3z",     // in front of something else
        "\xC3\xC3",  // in front of another first half
        "\xC2\x7F",  // one below the second halves
        "\xC2\xC0",  // one above
        "\xC0\x80",  // a zero in more bytes than it needs
        "\xC1\xBF",  // 7F likewise
        "\xFE",
        "\xFF"  // in no text at all
    };
    for (const std::string_view text : refused)
        EXPECT_EQ(bytesOf(text), std::nullopt) << hexOf(Bytes(text.begin(), text.end()));
}

TEST(ProtocolText, WritesPayloadsInLowerCaseDigits)
{
    EXPECT_EQ(hexOf({}), "");
    EXPECT_EQ(hexOf({0x00}), "00");
    EXPECT_EQ(hexOf({0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}), "0123456789abcdef");
    EXPECT_EQ(hexOf({0xFF, 0x0F, 0xF0}), "ff0ff0");
}

TEST(ProtocolText, ReadsPairsOfDigitsOfBothCases)
{
    EXPECT_EQ(bytesOfHex(""), Bytes{});
    EXPECT_EQ(bytesOfHex("00"), Bytes{0});
    EXPECT_EQ(bytesOfHex("0123456789abcdef"), (Bytes{0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}));
    EXPECT_EQ(bytesOfHex("ABCDEFabcdefAf"), (Bytes{0xAB, 0xCD, 0xEF, 0xAB, 0xCD, 0xEF, 0xAF}));
}

TEST(ProtocolText, RefusesEverythingElseAsPayload)
{
    for (const char* const text :
         {"0", "000", "0g", "g0", "/0", ":0", "0@", "0G", "0`", "0x", " 0", "0 ", "-1", "00zz"})
        EXPECT_EQ(bytesOfHex(text), std::nullopt) << text;
    EXPECT_EQ(bytesOfHex("0\0"s), std::nullopt);
    EXPECT_EQ(bytesOfHex("\xC3\xA9"), std::nullopt);
}

TEST(ProtocolText, ReadsEveryPayloadAsItWasWritten)
{
    Bytes all;
    for (int byte = 0; byte < 256; ++byte)
        all.push_back(static_cast<unsigned char>(byte));
    EXPECT_EQ(hexOf(all).size(), 512U);
    EXPECT_EQ(bytesOfHex(hexOf(all)), all);
}

}  // namespace
