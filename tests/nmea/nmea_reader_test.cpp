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

}  // namespace
}  // namespace nmea
