#include "support/KelArcTest.h"

#include <utility>

// Keys, texts and values of the typed settings, as the tests' own literals.

namespace contract {
namespace {

using kelarc::KelArc;
using support::Answer;
using support::Function;
using support::reply;
using support::resultLine;
using support::Strings;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct KnownReply
{
    const char* text;
    int value;
};

struct PublishedGetter
{
    const char* name;
    const char* key;
    unsigned unknownReplyLine;
    const char* answerPrefix;  ///< what stands between code and value
    bool looksAtFailedReads;
    std::vector<KnownReply> replies;
    void (*request)(KelArc& kelarc, Answer answer);
};

template <auto operation>
void get(KelArc& kelarc, Answer answer)
{
    (kelarc.*operation)(std::move(answer));
}

template <int system>
void getStatus(KelArc& kelarc, Answer answer)
{
    kelarc.getGnssStatus(kelarc::gnss::SYSTEM{system}, std::move(answer));
}

// clang-format off
const std::vector<PublishedGetter> kGetters = {
    // name, key, line of an unknown reply, prefix, failed reads, replies, request
    {"CpuPower",  "Power/Cpu",        461, "",    false, {{"\"std\"", 1},  {"\"max\"", 2}}, get<&KelArc::getCpuPower>},
    {"CpuPsm",    "Power/Psm",        511, "",    true,  {{"\"1\"", 2},    {"\"0\"", 1}},   get<&KelArc::getCpuPsm>},
    {"Format",    "Nmea/Data/Format", 680, "",    false, {{"\"Nmea\"", 1}, {"\"Raw\"", 2}}, get<&KelArc::getGnssFormat>},
    {"DRSync",    "Nmea/DRSync",      732, "",    false, {{"\"off\"", 1},  {"\"on\"", 2}},  get<&KelArc::getDRSync>},
    {"Glonass",   "Engine/Glonass",   797, "1, ", false, {{"\"0\"", 1},    {"\"1\"", 2}},   getStatus<1>},
    {"Galileo",   "Engine/Galileo",   797, "2, ", false, {{"\"0\"", 1},    {"\"1\"", 2}},   getStatus<2>},
    {"Beidou",    "Engine/Beidou",    797, "3, ", false, {{"\"0\"", 1},    {"\"1\"", 2}},   getStatus<3>},
    {"Qzss",      "Engine/Qzss",      797, "4, ", false, {{"\"0\"", 1},    {"\"1\"", 2}},   getStatus<4>},
    {"Sbas",      "Nmea/Sbas",        858, "",    false, {{"\"off\"", 1},  {"\"on\"", 2}},  get<&KelArc::getSbasStatus>},
    {"Frequency", "Nmea/FreqMs",      900, "",    false, {{"\"1000\"", 1}, {"\"500\"", 2}, {"\"200\"", 3}, {"\"100\"", 4}},
                                                                                            get<&KelArc::getGnssFrequency>},
};
// clang-format on

class Getter : public support::KelArcTest, public ::testing::WithParamInterface<PublishedGetter>
{
protected:
    Getter() { open(); }

    /// What is logged and answered for a read that ends so.
    Strings read(const std::string& replyText, int code = 0)
    {
        journal.clear();
        arcsim::answerNext(Function::CheckModuleSetting,
                           std::vector<arcsim::Answer>(code == 0 ? 1 : 15, reply(replyText, code)));
        GetParam().request(kelarc(), answer());
        settle();
        return journal.texts();
    }

    static std::string readText() { return std::string("Get ARC_CheckModuleSetting(\"") + GetParam().key + "\")"; }

    static std::string unknownLine(const std::string& replyText)
    {
        return "4 KelArc::operator()." + std::to_string(GetParam().unknownReplyLine) +
               ": Unknown return value from ARC_CheckModuleSetting(" + GetParam().key + ") -> '" + replyText + "'";
    }

    static std::string answerText(int code, int value)
    {
        return "answer(" + std::to_string(code) + ", " + GetParam().answerPrefix + std::to_string(value) + ")";
    }
};

TEST_P(Getter, ReadsItsKey)
{
    read(GetParam().replies.front().text);
    EXPECT_THAT(lastArguments(Function::CheckModuleSetting), ElementsAre(GetParam().key, "null", "set", "255", "null"));
    EXPECT_EQ(callCount(Function::CheckModuleSetting), 1U);
}

TEST_P(Getter, KnowsItsReplies)
{
    for (const KnownReply& known : GetParam().replies)
        EXPECT_THAT(read(known.text), ElementsAre(resultLine(15, readText(), 0), answerText(0, known.value)));
}

TEST_P(Getter, LogsEveryOtherReplyAndAnswersUnknown)
{
    Strings others = {"",       "\"\"",      "\"2\"",   "\"7\"",   "yes",    "\"std",
                      "\"50\"", "\"10000\"", "\"OFF\"", "\"raw\"", "\"MAX\""};
    for (const KnownReply& known : GetParam().replies) {
        const std::string text = known.text;
        others.insert(others.end(), {text.substr(1, text.size() - 2), text.substr(1), text.substr(0, text.size() - 1),
                                     text + " ", " " + text, text + text, "'" + text + "'"});
    }
    for (const std::string& other : others)
        EXPECT_THAT(read(other), ElementsAre(resultLine(15, readText(), 0), unknownLine(other), answerText(0, 0)));
}

TEST_P(Getter, AnswersUnknownWhenTheReadFailed)
{
    const std::string known = GetParam().replies.back().text;
    for (const std::string& text : {std::string(), std::string("\"?\"")}) {
        const Strings happened = read(text, 2);
        const Strings tail(happened.end() - 3, happened.end());
        const std::string gaveUp = support::gaveUpLine(4, 395, readText());
        if (GetParam().looksAtFailedReads)
            EXPECT_THAT(tail, ElementsAre(gaveUp, unknownLine(text), answerText(2, 0)));
        else
            EXPECT_THAT(tail, ElementsAre(support::kPause, gaveUp, answerText(2, 0)));
    }
    EXPECT_EQ(read(known, 2).back(),
              answerText(2, GetParam().looksAtFailedReads ? GetParam().replies.back().value : 0));
}

TEST_P(Getter, AnswersUnknownWhenNoAttemptIsMade)
{
    close();
    GetParam().request(kelarc(), answer());
    settle();
    if (GetParam().looksAtFailedReads)
        EXPECT_THAT(journal.texts(), ElementsAre(unknownLine(""), answerText(32, 0)));
    else
        EXPECT_THAT(journal.texts(), ElementsAre(answerText(32, 0)));
}

INSTANTIATE_TEST_SUITE_P(Published, Getter, ::testing::ValuesIn(kGetters), support::ByName());

struct PublishedWrite
{
    const char* name;
    const char* key;
    const char* text;
    const char* answerPrefix;
    void (*request)(KelArc& kelarc, Answer answer);
};

template <auto operation, auto argument>
void set(KelArc& kelarc, Answer answer)
{
    (kelarc.*operation)(argument, std::move(answer));
}

template <int system, bool on>
void setStatus(KelArc& kelarc, Answer answer)
{
    kelarc.setGnssStatus(kelarc::gnss::SYSTEM{system}, on, std::move(answer));
}

using kelarc::CPU_POWER;
using kelarc::gnss::FORMAT;
using kelarc::gnss::FREQUENCY;

// clang-format off
const std::vector<PublishedWrite> kWrites = {
    {"CpuPower1",  "Power/Cpu",        "\"std\"",  "",    set<&KelArc::setCpuPower, CPU_POWER{1}>},
    {"CpuPower2",  "Power/Cpu",        "\"max\"",  "",    set<&KelArc::setCpuPower, CPU_POWER{2}>},
    {"CpuPsmOn",   "Power/Psm",        "\"1\"",    "",    set<&KelArc::setCpuPsm, true>},
    {"CpuPsmOff",  "Power/Psm",        "\"0\"",    "",    set<&KelArc::setCpuPsm, false>},
    {"Format1",    "Nmea/Data/Format", "\"Nmea\"", "",    set<&KelArc::setGnssFormat, FORMAT{1}>},
    {"Format2",    "Nmea/Data/Format", "\"Raw\"",  "",    set<&KelArc::setGnssFormat, FORMAT{2}>},
    {"DRSyncOn",   "Nmea/DRSync",      "\"on\"",   "",    set<&KelArc::setDRSync, true>},
    {"DRSyncOff",  "Nmea/DRSync",      "\"off\"",  "",    set<&KelArc::setDRSync, false>},
    {"GlonassOn",  "Engine/Glonass",   "\"1\"",    "1, ", setStatus<1, true>},
    {"GlonassOff", "Engine/Glonass",   "\"0\"",    "1, ", setStatus<1, false>},
    {"GalileoOn",  "Engine/Galileo",   "\"1\"",    "2, ", setStatus<2, true>},
    {"GalileoOff", "Engine/Galileo",   "\"0\"",    "2, ", setStatus<2, false>},
    {"BeidouOn",   "Engine/Beidou",    "\"1\"",    "3, ", setStatus<3, true>},
    {"BeidouOff",  "Engine/Beidou",    "\"0\"",    "3, ", setStatus<3, false>},
    {"QzssOn",     "Engine/Qzss",      "\"1\"",    "4, ", setStatus<4, true>},
    {"QzssOff",    "Engine/Qzss",      "\"0\"",    "4, ", setStatus<4, false>},
    {"SbasOn",     "Nmea/Sbas",        "\"on\"",   "",    set<&KelArc::setSbasStatus, true>},
    {"SbasOff",    "Nmea/Sbas",        "\"off\"",  "",    set<&KelArc::setSbasStatus, false>},
    {"Frequency1", "Nmea/FreqMs",      "\"1000\"", "",    set<&KelArc::setGnssFrequency, FREQUENCY{1}>},
    {"Frequency2", "Nmea/FreqMs",      "\"500\"",  "",    set<&KelArc::setGnssFrequency, FREQUENCY{2}>},
    {"Frequency3", "Nmea/FreqMs",      "\"200\"",  "",    set<&KelArc::setGnssFrequency, FREQUENCY{3}>},
    {"Frequency4", "Nmea/FreqMs",      "\"100\"",  "",    set<&KelArc::setGnssFrequency, FREQUENCY{4}>},
};
// clang-format on

class Write : public support::KelArcTest, public ::testing::WithParamInterface<PublishedWrite>
{
};

TEST_P(Write, SendsItsTextToItsKeyAndAnswersTheOutcome)
{
    open();
    const std::string call =
        std::string("Set ARC_CheckModuleSetting(\"") + GetParam().key + "\", " + GetParam().text + ")";
    for (const bool changed : {true, false}) {
        journal.clear();
        arcsim::Answer written;
        written.indicator = changed ? 1 : 0;
        arcsim::answerNext(Function::CheckModuleSetting, {written});
        GetParam().request(kelarc(), answer());
        settle();
        EXPECT_THAT(lastArguments(Function::CheckModuleSetting),
                    ElementsAre(GetParam().key, GetParam().text, "null", "0", "set"));
        EXPECT_THAT(journal.texts(),
                    ElementsAre(resultLine(15, call, 0),
                                std::string("answer(0, ") + GetParam().answerPrefix + (changed ? "true)" : "false)")));
    }
    EXPECT_EQ(callCount(Function::CheckModuleSetting), 2U);
}

TEST_P(Write, AnswersTheCodeOfAFailure)
{
    open();
    failTimes(Function::CheckModuleSetting, 15, 13);
    GetParam().request(kelarc(), answer());
    settle();
    EXPECT_THAT(answers(), ElementsAre(std::string("answer(13, ") + GetParam().answerPrefix + "false)"));
}

INSTANTIATE_TEST_SUITE_P(Published, Write, ::testing::ValuesIn(kWrites), support::ByName());

}  // namespace
}  // namespace contract
