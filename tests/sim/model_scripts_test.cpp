#include "sim/model_support.h"

#include <array>
#include <atomic>

namespace {

using arcsim::Answer;
using arcsim::Function;
using model_test::OpenModem;
using model_test::Signal;
using model_test::SimulatedModem;

Answer code(int value)
{
    Answer answer;
    answer.code = value;
    return answer;
}

TEST_F(SimulatedModem, AnswersANamedCallFirstThenTheNextOnesThenAlwaysTheSame)
{
    arcsim::answerAlways(Function::StopGNSS, code(2));
    arcsim::answerNext(Function::StopGNSS, {code(11), code(12)});
    arcsim::answerCall(Function::StopGNSS, 2, code(39));
    EXPECT_EQ(ARC_StopGNSS(), 11);
    EXPECT_EQ(ARC_StopGNSS(), 39) << "a named call uses up none of the next answers";
    EXPECT_EQ(ARC_StopGNSS(), 12);
    EXPECT_EQ(ARC_StopGNSS(), 2);
    EXPECT_EQ(ARC_StopGNSS(), 2);
}

TEST_F(SimulatedModem, AppendsFurtherNextAnswers)
{
    arcsim::answerNext(Function::Open, {code(31)});
    arcsim::answerNext(Function::Open, {code(39)});
    EXPECT_EQ(ARC_Open(), 31);
    EXPECT_EQ(ARC_Open(), 39);
    EXPECT_EQ(ARC_Open(), 0) << "the model's own answer";
}

TEST_F(SimulatedModem, CountsCallsOfEachFunctionByItself)
{
    arcsim::answerCall(Function::Open, 1, code(31));
    ARC_GetArcVersion();
    ARC_StopGNSS();
    EXPECT_EQ(ARC_Open(), 31);
}

TEST_F(SimulatedModem, AnswersByItselfAgainWhenScriptsAreCleared)
{
    arcsim::answerCall(Function::Open, 1, code(5));
    arcsim::answerNext(Function::Open, {code(6)});
    arcsim::answerAlways(Function::Open, code(7));
    arcsim::clearAnswers(Function::Open);
    EXPECT_EQ(ARC_Open(), 0);
}

TEST_F(SimulatedModem, KeepsItsStateWhenAScriptAnswers)
{
    arcsim::answerNext(Function::Open, {code(0)});
    EXPECT_EQ(ARC_Open(), 0);
    EXPECT_FALSE(arcsim::isOpen());
}

TEST_F(OpenModem, WritesOnlyTheOutputsThatAScriptSets)
{
    arcsim::answerAlways(Function::CheckModuleSetting, code(0));
    std::array<char, 4> reply{'a', 'b', 'c', '\0'};
    int indicator = 2;
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", nullptr, reply.data(), 4, nullptr), 0);
    EXPECT_EQ(ARC_CheckModuleSetting("Power/Cpu", "\"max\"", nullptr, 0, &indicator), 0);
    EXPECT_STREQ(reply.data(), "abc");
    EXPECT_EQ(indicator, 2);
    EXPECT_EQ(arcsim::setting("Power/Cpu"), "\"std\"");
}

TEST_F(SimulatedModem, WritesScriptedOutputsWithFailuresToo)
{
    Answer answer = code(33);
    answer.text = "some";
    answer.secondText = "more";
    arcsim::answerNext(Function::GetRilVersion, {answer});
    std::array<char, 8> first{};
    std::array<char, 8> second{};
    EXPECT_EQ(ARC_GetRilVersion(first.data(), second.data(), 8), 33);
    EXPECT_STREQ(first.data(), "some");
    EXPECT_STREQ(second.data(), "more");

    Answer indicating = code(2);
    indicating.indicator = 1;
    arcsim::answerNext(Function::CheckModuleSetting, {indicating});
    int indicator = 2;
    EXPECT_EQ(ARC_CheckModuleSetting("k", "v", nullptr, 0, &indicator), 2);
    EXPECT_EQ(indicator, 1);

    Answer recording = code(12);
    recording.record = LstaInfo{1003, 0, 7, 0, -2.5, {}};
    arcsim::answerNext(Function::CurrentLSTA, {recording});
    LstaInfo record{};
    EXPECT_EQ(ARC_CurrentLSTA(10, &record), 12);
    EXPECT_EQ(record.indicator, 1003);
    EXPECT_EQ(record.value, -2.5);
}

TEST_F(SimulatedModem, CutsAScriptedTextToTheBufferAndLeavesTheCodeAlone)
{
    Answer answer;
    answer.text = "12345678";
    arcsim::answerAlways(Function::StartGNSSraw, answer);
    std::array<char, 6> buffer{'#', '#', '#', '#', '#', '\0'};
    EXPECT_EQ(ARC_StartGNSSraw(buffer.data(), 4), 0);
    EXPECT_STREQ(buffer.data(), "1234#");
}

TEST_F(SimulatedModem, LeavesOutTheTerminatorWhenTold)
{
    Answer answer;
    answer.text = "12";
    answer.terminated = false;
    arcsim::answerAlways(Function::AtcTunneling, answer);
    std::array<char, 4> buffer{'#', '#', '#', '\0'};
    EXPECT_EQ(ARC_AtcTunneling("AT", buffer.data()), 0);
    EXPECT_STREQ(buffer.data(), "12#");
    arcsim::answerAlways(Function::StartGNSSraw, answer);
    EXPECT_EQ(ARC_StartGNSSraw(buffer.data(), 4), 0);
    EXPECT_STREQ(buffer.data(), "12#");
}

TEST_F(SimulatedModem, GivesAScriptedVersionOrNone)
{
    Answer scripted;
    scripted.text = "9.9";
    arcsim::answerNext(Function::GetArcVersion, {scripted, code(32), code(0)});
    const char* const version = ARC_GetArcVersion();
    EXPECT_STREQ(version, "9.9");
    EXPECT_EQ(ARC_GetArcVersion(), nullptr);
    EXPECT_STREQ(ARC_GetArcVersion(), "ArcRilD 1.0 (simulated)");
    arcsim::reset();
    EXPECT_STREQ(version, "9.9") << "the text outlives everything";
}

TEST_F(SimulatedModem, RunsTheActionOfAnAnswerOnTheCallingThread)
{
    std::thread::id ran;
    Answer answer;
    answer.during = [&] { ran = std::this_thread::get_id(); };
    arcsim::answerNext(Function::Open, {answer});
    ARC_Open();
    EXPECT_EQ(ran, std::this_thread::get_id());
}

TEST_F(SimulatedModem, TakesOtherCallsAndControlWhileAnActionBlocks)
{
    Signal inside;
    Signal release;
    Answer answer;
    answer.during = [&] {
        inside.set();
        release.wait();
    };
    arcsim::answerNext(Function::Open, {answer});
    std::thread blocked([] { ARC_Open(); });
    ASSERT_TRUE(inside.wait());
    EXPECT_EQ(ARC_Open(), 0);
    EXPECT_EQ(arcsim::setting("Power/Cpu"), "\"std\"");
    EXPECT_EQ(arcsim::calls(Function::Open).size(), 2U);
    release.set();
    blocked.join();
}

TEST_F(SimulatedModem, ControlsItselfFromWithinAnAction)
{
    Answer answer;
    answer.during = [] {
        arcsim::clearAnswers(Function::Open);
        arcsim::answerAlways(Function::Open, code(39));
        arcsim::setSetting("Power/Cpu", "\"max\"");
        ARC_GetArcVersion();
    };
    arcsim::answerAlways(Function::Open, answer);
    EXPECT_EQ(ARC_Open(), 0);
    EXPECT_EQ(ARC_Open(), 39);
    EXPECT_EQ(arcsim::setting("Power/Cpu"), "\"max\"");
}

TEST_F(SimulatedModem, TakesAtLeastTheScriptedLatency)
{
    Answer answer;
    answer.latency = std::chrono::milliseconds(60);
    arcsim::answerNext(Function::Open, {answer});
    const auto begin = std::chrono::steady_clock::now();
    ARC_Open();
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(60));
}

using Texts = std::vector<std::string>;

TEST_F(SimulatedModem, RemembersAllCallsWithTheirArgumentsInOrder)
{
    char buffer[64] = {};
    LstaInfo record{};
    int indicator = 0;
    ARC_SetNotificationMethod(1);
    ARC_Open();
    ARC_RegisterNotification(model_test::Mailbox::handler);
    ARC_RegisterNotification(nullptr);
    ARC_GetArcVersion();
    ARC_GetRilVersion(buffer, nullptr, 64);
    ARC_EnableLogging(-3, "zone text");
    ARC_AtcTunneling("AT", nullptr);
    ARC_CheckModuleSetting("Power/Cpu", nullptr, buffer, 63, nullptr);
    ARC_CheckModuleSetting("Power/Cpu", "\"max\"", nullptr, 0, &indicator);
    ARC_StartGNSSraw(buffer, 63);
    ARC_StopGNSS();
    ARC_ForceStopGNSS();
    ARC_ResetAGNSS();
    ARC_CurrentLSTA(10, &record);
    ARC_EnableLSTA(11, true, -5);
    ARC_Close();

    const std::vector<std::pair<Function, Texts>> expected{
        {Function::SetNotificationMethod, {"1"}},
        {Function::Open, {}},
        {Function::RegisterNotification, {"set"}},
        {Function::RegisterNotification, {"null"}},
        {Function::GetArcVersion, {}},
        {Function::GetRilVersion, {"set", "null", "64"}},
        {Function::EnableLogging, {"-3", "zone text"}},
        {Function::AtcTunneling, {"AT", "null"}},
        {Function::CheckModuleSetting, {"Power/Cpu", "null", "set", "63", "null"}},
        {Function::CheckModuleSetting, {"Power/Cpu", "\"max\"", "null", "0", "set"}},
        {Function::StartGNSSraw, {"set", "63"}},
        {Function::StopGNSS, {}},
        {Function::ForceStopGNSS, {}},
        {Function::ResetAGNSS, {}},
        {Function::CurrentLSTA, {"10", "set"}},
        {Function::EnableLSTA, {"11", "1", "-5"}},
        {Function::Close, {}},
    };
    const std::vector<arcsim::Call> calls = arcsim::calls();
    ASSERT_EQ(calls.size(), expected.size());
    for (std::size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(calls[i].function, expected[i].first) << "call " << i;
        EXPECT_EQ(calls[i].arguments, expected[i].second) << "call " << i;
        EXPECT_EQ(calls[i].thread, std::this_thread::get_id()) << "call " << i;
    }
    EXPECT_EQ(calls[2].number, 1U);
    EXPECT_EQ(calls[3].number, 2U);
    EXPECT_EQ(arcsim::calls(Function::CheckModuleSetting).size(), 2U);
}

TEST_F(SimulatedModem, LetsACallerWaitForCalls)
{
    EXPECT_FALSE(arcsim::waitForCalls(Function::Open, 1, std::chrono::milliseconds(1)));
    std::thread caller([] {
        ARC_Open();
        ARC_Open();
    });
    EXPECT_TRUE(arcsim::waitForCalls(Function::Open, 2));
    caller.join();
}

TEST_F(SimulatedModem, AnswersEveryThreadOnceWhenAllUseItAtTheSameTime)
{
    std::vector<Answer> answers;
    for (int i = 0; i < 400; ++i)
        answers.push_back(code(2));
    arcsim::answerNext(Function::StopGNSS, answers);
    std::atomic<int> scripted{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            char text[64];
            ARC_Open();
            for (int n = 0; n < 200; ++n) {
                scripted += ARC_StopGNSS() == 2 ? 1 : 0;
                ARC_CheckModuleSetting("Nmea/FreqMs", n % 2 == 0 ? "\"100\"" : "\"1000\"", nullptr, 0, nullptr);
                ARC_StartGNSSraw(text, 63);
                arcsim::engine();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(scripted, 400);
    EXPECT_EQ(ARC_StopGNSS(), 0);
    EXPECT_EQ(arcsim::calls().back().number, 801U) << "each has its number";
}

}  // namespace
