#include "support/KelArcTest.h"

#include <utility>

// Refused requests: the line number and text of their log line, and their answer.

namespace contract {
namespace {

using kelarc::KelArc;
using support::Answer;
using support::Kind;
using support::Strings;

using kelarc::CPU_POWER;
using kelarc::gnss::FORMAT;
using kelarc::gnss::FREQUENCY;
using kelarc::gnss::SYSTEM;
using kelarc::lsta::TECH;

struct PublishedRefusal
{
    const char* name;
    int firstAccepted;
    int lastAccepted;
    const char* beforeValue;  ///< level, prefix and message up to the value; empty: not logged
    const char* afterValue;
    const char* answer;  ///< empty: never answered
    void (*request)(KelArc& kelarc, int value, Answer answer);
};

template <auto operation, typename Value>
void set(KelArc& kelarc, int value, Answer answer)
{
    (kelarc.*operation)(static_cast<Value>(value), std::move(answer));
}

void setStatus(KelArc& kelarc, int value, Answer answer)
{
    kelarc.setGnssStatus(static_cast<SYSTEM>(value), true, std::move(answer));
}

void enableLsta(KelArc& kelarc, int value, Answer answer)
{
    kelarc.setLstaGnssStatus(static_cast<TECH>(value), true, 0, nullptr, std::move(answer));
}

// clang-format off
const std::vector<PublishedRefusal> kRefusals = {
    {"setCpuPower",       1, 2,  "4 KelArc::setCpuPower.484: Invalid CPU_POWER parameter '", "'",               "answer(14, false)",    set<&KelArc::setCpuPower, CPU_POWER>},
    {"setGnssFormat",     1, 2,  "4 KelArc::setGnssFormat.703: Invalid FORMAT parameter: '", "'",               "answer(14, false)",    set<&KelArc::setGnssFormat, FORMAT>},
    {"setGnssFrequency",  1, 4,  "4 KelArc::setGnssFrequency.931: Invalid FREQUENCY parameter '", "'",          "answer(14, false)",    set<&KelArc::setGnssFrequency, FREQUENCY>},
    {"setMinElevation",   5, 45, "4 KelArc::setMinElevation.962: Invalid minimum elevation, out of bounds: ", "", "answer(14, false)",   set<&KelArc::setMinElevation, unsigned char>},
    {"setRawMask",        0, 255, "", "", "",                                                                                            set<&KelArc::setRawMask, unsigned char>},
    {"getGnssStatus",     1, 4,  "4 KelArc::getGnssStatus.775: Invalid SYSTEM parameter: '", "'",               "",                     set<&KelArc::getGnssStatus, SYSTEM>},
    {"setGnssStatus",     1, 4,  "", "", "",                                                                                            setStatus},
    {"getLstaGnss",       1, 4,  "4 KelArc::getLstaGnss.1021: Unknown/unsupported tech id ", "",                "answer(14, false, 0)", set<&KelArc::getLstaGnss, TECH>},
    {"setLstaGnssStatus", 1, 4,  "4 KelArc::setLstaGnssStatus.1129: Unknown/unsupported tech id ", "",          "answer(14)",           enableLsta},
};
// clang-format on

class Refusal : public support::KelArcTest, public ::testing::WithParamInterface<PublishedRefusal>
{
};

TEST_P(Refusal, HoldsForExactlyTheValuesOutsideTheRange)
{
    const PublishedRefusal& refusal = GetParam();
    open();
    for (int value = 0; value <= 255; ++value) {
        SCOPED_TRACE(value);
        const support::Gate gate = holdWorker();
        journal.clear();
        refusal.request(kelarc(), value, answer());
        const bool accepted = value >= refusal.firstAccepted && value <= refusal.lastAccepted;
        EXPECT_EQ(kelarc().getPendingTasks(), accepted ? 1U : 0U);
        Strings expected;
        if (!accepted && *refusal.beforeValue != '\0')
            expected.push_back(refusal.beforeValue + std::to_string(value) + refusal.afterValue);
        if (!accepted && *refusal.answer != '\0')
            expected.push_back(refusal.answer);
        EXPECT_EQ(journal.texts(), expected);
        for (const support::Journal::Entry& entry : journal.entries())
            EXPECT_EQ(entry.thread, std::this_thread::get_id()) << entry.text;
        gate.open();
        settle();
    }
}

INSTANTIATE_TEST_SUITE_P(Published, Refusal, ::testing::ValuesIn(kRefusals), support::ByName());

class LstaRefusal : public support::KelArcTest
{
};

TEST_F(LstaRefusal, PrintsANegativeTechnologyAsUnsigned)
{
    kelarc().getLstaGnss(TECH{-1}, answer());
    kelarc().setLstaGnssStatus(TECH{-1}, true, 0, nullptr, answer());
    EXPECT_THAT(lines(),
                ::testing::ElementsAre("4 KelArc::getLstaGnss.1021: Unknown/unsupported tech id 4294967295",
                                       "4 KelArc::setLstaGnssStatus.1129: Unknown/unsupported tech id 4294967295"));
}

}  // namespace
}  // namespace contract
