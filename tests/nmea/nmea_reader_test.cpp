#include "nmea/NmeaReader.h"

#include <gtest/gtest.h>

namespace nmea {
namespace {

constexpr const char* kSentence = "$GPGLL,4916.45,N,12311.12,W,225444,A*31\r\n";

TEST(NmeaReader, TakesASentenceApart)
{
    NmeaReader reader;
    const auto sentences = reader.read(kSentence);
    ASSERT_EQ(sentences.size(), 1u);
    EXPECT_EQ(sentences[0].talker, "GP");
    EXPECT_EQ(sentences[0].formatter, "GLL");
    EXPECT_EQ(sentences[0].fields, (std::vector<std::string>{"4916.45", "N", "12311.12", "W", "225444", "A"}));
    EXPECT_EQ(sentences[0].field(6), "") << "a field that is not there";
    EXPECT_EQ(reader.counters().sentences, 1u);
}

TEST(NmeaReader, KeepsEmptyFieldsAndWholeProprietaryAddresses)
{
    NmeaReader reader;
    const auto sentences = reader.read("$PABCD,,1,*49\r\n$GPZDA,,,,,,*48\r\n");
    ASSERT_EQ(sentences.size(), 2u);
    EXPECT_EQ(sentences[0].talker, "");
    EXPECT_EQ(sentences[0].formatter, "PABCD");
    EXPECT_EQ(sentences[0].fields, (std::vector<std::string>{"", "1", ""}));
    EXPECT_EQ(sentences[1].fields.size(), 6u);
}

TEST(NmeaReader, PutsPiecesTogetherWhereverTheyAreCut)
{
    const std::string bytes = std::string(kSentence) + kSentence;
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        NmeaReader reader;
        const std::size_t first = reader.read(std::string_view(bytes).substr(0, cut)).size();
        const std::size_t second = reader.read(std::string_view(bytes).substr(cut)).size();
        EXPECT_EQ(first + second, 2u) << "cut at " << cut;
    }
}

TEST(NmeaReader, AcceptsLowerCaseChecksumsAndLinesWithoutCarriageReturn)
{
    NmeaReader reader;
    EXPECT_EQ(reader.read("$PABCD,b*1a\n$PABCD,b*1A\n").size(), 2u);
}

TEST(NmeaReader, EveryFlippedBitOfASentenceIsNoticed)
{
    const std::string good(kSentence);
    for (std::size_t i = 0; i + 2 < good.size(); ++i)
        for (int bit = 0; bit < 8; ++bit) {
            std::string bad = good;
            bad[i] = static_cast<char>(bad[i] ^ (1 << bit));
            NmeaReader reader;
            EXPECT_TRUE(reader.read(bad).empty()) << bad;
        }
}

TEST(NmeaReader, CountsWhatIsNoSentence)
{
    NmeaReader reader;
    for (const char* line : {"hello", "GPGLL,1*00", "$GPGLL,1", "$GPGLL,1*", "$GPGLL,1*1", "$GPGLL,1*123",
                             "$GPGLL,1*-1", "$GPGLL,\x01*00", "$GPGLL,\xff*00", "*00", "!AIVDM,1*00"}) {
        const auto before = reader.counters().garbage;
        EXPECT_TRUE(reader.read(std::string(line) + "\r\n").empty()) << line;
        EXPECT_EQ(reader.counters().garbage, before + 1) << line;
    }
    EXPECT_EQ(reader.counters().wrongChecksums, 0u);
}

TEST(NmeaReader, PassesOverEmptyLines)
{
    NmeaReader reader;
    EXPECT_TRUE(reader.read("\r\n\n\r\n").empty());
    EXPECT_EQ(reader.counters().garbage, 0u);
}

TEST(NmeaReader, CountsAnEndlessLineOnceAndGoesOnBehindIt)
{
    NmeaReader reader;
    for (int i = 0; i < 1000; ++i)
        EXPECT_TRUE(reader.read(std::string(1000, '$')).empty());
    EXPECT_EQ(reader.read("\n" + std::string(kSentence)).size(), 1u);
    EXPECT_EQ(reader.counters().garbage, 1u);
}

const std::string kBare = "$GPGLL,4916.45,N,12311.12,W,225444,A*31";  // without an end

TEST(NmeaReader, EndsALineAtAnyMixOfCarriageReturnAndLineFeed)
{
    for (const char* end : {"\n", "\r\n", "\r\r\n", "\r", "\n\r", "\r\r\r\n\n"}) {
        NmeaReader reader;
        EXPECT_EQ(reader.read(kBare + end + kBare + end).size(), 2u) << ::testing::PrintToString(end);
        EXPECT_EQ(reader.counters().garbage, 0u) << ::testing::PrintToString(end);
    }
}

TEST(NmeaReader, FindsASentenceBehindBytesWithoutALineEnd)
{
    const std::string binary("\xB5\x62\x01\x07\x00\xFF $*31", 11);
    for (const std::string& noise : {binary, std::string("$GPGGA,1200"), std::string("!AIVDM,1,1,,A,x,0*5C"),
                                     std::string(2000, 'x'), std::string("$$$")}) {
        NmeaReader reader;
        EXPECT_EQ(reader.read(noise + kSentence + noise + kSentence).size(), 2u) << noise;
        EXPECT_EQ(reader.counters().sentences, 2u) << noise;
        EXPECT_EQ(reader.counters().garbage, 2u) << noise;
    }
}

TEST(NmeaReader, LosesAndCountsTheSentenceThatAnotherOneBreaksInto)
{
    NmeaReader reader;
    for (std::size_t cut = 1; cut < kBare.size(); ++cut) {
        const auto sentences = reader.read(kBare.substr(0, cut) + "$PABCD,b*1A\r\n");
        ASSERT_EQ(sentences.size(), 1u) << "cut at " << cut;
        EXPECT_EQ(sentences[0].formatter, "PABCD");
        EXPECT_EQ(reader.counters().garbage, cut);
    }
}

TEST(NmeaReader, TakesAWholeSentenceThatHasNoLineEndOfItsOwn)
{
    NmeaReader reader;
    EXPECT_EQ(reader.read(kBare + kBare + "\r\n").size(), 2u) << "the next one ends it";
    EXPECT_EQ(reader.counters().garbage, 0u);
    EXPECT_EQ(reader.read(kBare + "\xB5\x62\n").size(), 1u) << "binary bytes end it";
    EXPECT_EQ(reader.counters().garbage, 1u) << "the binary bytes";
    EXPECT_TRUE(reader.read(kBare).empty());
    EXPECT_EQ(reader.finish().size(), 1u) << "the end of the stream ends it";
    EXPECT_TRUE(reader.finish().empty());
}

TEST(NmeaReader, BelievesNoSentenceWithoutAnAddressOrAChecksum)
{
    NmeaReader reader;
    for (const char* line : {"$*00", "$,*2C", "$GPGLL,4916.45,N,12311.12,W,225444,A", "$"}) {
        const auto before = reader.counters().garbage;
        EXPECT_TRUE(reader.read(std::string(line) + "\r\n").empty()) << line;
        EXPECT_EQ(reader.counters().garbage, before + 1) << line;
    }
    EXPECT_TRUE(reader.read("$GPGLL,1*00\r\n").empty());
    EXPECT_EQ(reader.counters().wrongChecksums, 1u);
}

TEST(NmeaReader, TakesSentencesLongerThanTheStandardAllowsUpToALimit)
{
    NmeaReader reader;
    const std::string zeros(500, '0');  // an even number of them leaves the checksum as it is
    EXPECT_EQ(reader.read("$PABCD,b" + zeros + "*1A\r\n").size(), 1u);
    EXPECT_TRUE(reader.read("$PABCD,b" + zeros + "0000*1A\r\n").empty());
    EXPECT_EQ(reader.counters().garbage, 1u);
}

TEST(NmeaReader, SaysWhereASentenceBegan)
{
    NmeaReader reader;
    const auto first = reader.read("ab\xFF" + kBare + "$PABCD");
    const auto second = reader.read(",b*1A\r\n");
    ASSERT_EQ(first.size(), 1u);
    ASSERT_EQ(second.size(), 1u);
    EXPECT_EQ(first[0].position, 3u);
    EXPECT_EQ(second[0].position, 3u + kBare.size());
}

}  // namespace
}  // namespace nmea
