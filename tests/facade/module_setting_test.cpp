#include "support/KelArcTest.h"

namespace {

using support::Function;
using support::gaveUpLine;
using support::kPause;
using support::reply;
using support::resultLine;
using support::Strings;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GetModuleSetting : public support::KelArcTest
{
protected:
    GetModuleSetting() { open(); }

    void read(const std::string& key)
    {
        kelarc().getModuleSetting(key, answer());
        settle();
    }
};

TEST_F(GetModuleSetting, ReadsByKeyIntoAReplyOf255Bytes)
{
    arcsim::answerNext(Function::CheckModuleSetting, {reply("\"1000\"")});
    read("Nmea/FreqMs");
    EXPECT_THAT(lastArguments(Function::CheckModuleSetting), ElementsAre("Nmea/FreqMs", "null", "set", "255", "null"));
    EXPECT_THAT(journal.texts(),
                ElementsAre(resultLine(15, "Get ARC_CheckModuleSetting(\"Nmea/FreqMs\")", 0), "answer(0, '\"1000\"')"));
}

TEST_F(GetModuleSetting, AsksTheModemItself)
{
    arcsim::setSetting("Power/Cpu", "\"max\"");
    read("Power/Cpu");
    EXPECT_THAT(answers(), ElementsAre("answer(0, '\"max\"')"));
}

TEST_F(GetModuleSetting, SendsAnyKeyAsItIs)
{
    for (const std::string key : {"", "with blank", "with \"quotes\"", "\xc3\xbc/%d", "null"}) {
        arcsim::answerNext(Function::CheckModuleSetting, {reply("x")});
        journal.clear();
        read(key);
        EXPECT_EQ(lastArguments(Function::CheckModuleSetting).at(0), key);
        EXPECT_THAT(lines(), ElementsAre(resultLine(15, "Get ARC_CheckModuleSetting(\"" + key + "\")", 0)));
    }
}

TEST_F(GetModuleSetting, DeliversTheReplyVerbatim)
{
    for (const std::string text : {"", " ", "\"\"", " \"a b\" \t", "\xff\x01"}) {
        arcsim::answerNext(Function::CheckModuleSetting, {reply(text)});
        journal.clear();
        read("k");
        EXPECT_THAT(answers(), ElementsAre("answer(0, '" + text + "')"));
    }
}

TEST_F(GetModuleSetting, DeliversAReplyThatFillsTheBufferWhole)
{
    const std::string full(255, 'r');
    arcsim::Answer unterminated = reply(full);
    unterminated.terminated = false;
    arcsim::answerNext(Function::CheckModuleSetting, {unterminated});
    read("k");
    EXPECT_THAT(answers(), ElementsAre("answer(0, '" + full + "')"));
}

TEST_F(GetModuleSetting, EndsTheReplyAtItsFirstZero)
{
    arcsim::answerNext(Function::CheckModuleSetting, {reply(std::string("ab\0cd", 5))});
    read("k");
    EXPECT_THAT(answers(), ElementsAre("answer(0, 'ab')"));
}

TEST_F(GetModuleSetting, DoesNotClearTheReplyBetweenAttempts)
{
    arcsim::Answer longer = reply("abcdef", 2);
    arcsim::Answer shorter = reply("xy");
    shorter.terminated = false;
    arcsim::answerNext(Function::CheckModuleSetting, {longer, shorter});
    read("k");
    EXPECT_THAT(answers(), ElementsAre("answer(0, 'xycdef')"));
}

TEST_F(GetModuleSetting, ClearsTheReplyForEachRequest)
{
    arcsim::Answer shorter = reply("xy");
    shorter.terminated = false;
    arcsim::answerNext(Function::CheckModuleSetting, {reply("abcdef"), shorter});
    read("k");
    read("k");
    EXPECT_THAT(answers(), ElementsAre("answer(0, 'abcdef')", "answer(0, 'xy')"));
}

TEST_F(GetModuleSetting, TreatsAReplyThatDidNotFitAsAFailureAndDeliversWhatDid)
{
    const std::string part(255, 'p');
    arcsim::Answer cut = reply(part, 33);
    cut.terminated = false;
    arcsim::answerAlways(Function::CheckModuleSetting, cut);
    read("k");
    EXPECT_EQ(callCount(Function::CheckModuleSetting), 15U);
    EXPECT_EQ(lines().back(), gaveUpLine(4, 395, "Get ARC_CheckModuleSetting(\"k\")"));
    EXPECT_THAT(answers(), ElementsAre("answer(33, '" + part + "')"));
}

TEST_F(GetModuleSetting, AnswersGenericErrorAndNoTextWithoutAnAttemptWhenClosed)
{
    close();
    read("Raw/Version");
    EXPECT_THAT(journal.texts(), ElementsAre("answer(32, '')"));
    EXPECT_EQ(callCount(Function::CheckModuleSetting), 0U);
}

TEST_F(GetModuleSetting, AnswersTheCodeOfTheAttemptThatWasTheLastBecauseOfAClose)
{
    failTimes(Function::CheckModuleSetting, 15, 9);
    duringPause(2, [this] { cancel(); });
    read("k");
    const std::string call = "Get ARC_CheckModuleSetting(\"k\")";
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(14, call, 9), kPause, resultLine(13, call, 9), kPause,
                                             "answer(9, '')", resultLine(15, "ARC_Close()", 0)));
}

TEST_F(GetModuleSetting, CopiesTheKey)
{
    {
        const support::Gate gate = holdWorker();
        std::string key = "one";
        kelarc().getModuleSetting(key, answer());
        key = "two";
    }
    settle();
    EXPECT_EQ(lastArguments(Function::CheckModuleSetting).at(0), "one");
}

class SetModuleSetting : public support::KelArcTest
{
protected:
    SetModuleSetting() { open(); }

    void write(const std::string& key, const std::string& value)
    {
        kelarc().setModuleSetting(key, value, answer());
        settle();
    }

    static arcsim::Answer indicating(int indicator, int code = 0)
    {
        arcsim::Answer answer;
        answer.code = code;
        answer.indicator = indicator;
        return answer;
    }
};

TEST_F(SetModuleSetting, WritesTheValueByKeyWithoutAReply)
{
    write("Power/Cpu", "\"max\"");
    EXPECT_THAT(lastArguments(Function::CheckModuleSetting), ElementsAre("Power/Cpu", "\"max\"", "null", "0", "set"));
    EXPECT_EQ(arcsim::setting("Power/Cpu"), "\"max\"");
}

TEST_F(SetModuleSetting, QuotesTheKeyButNotTheValueInItsCallText)
{
    arcsim::answerNext(Function::CheckModuleSetting, {{}, {}});
    write("Nmea/Sbas", "\"on\"");
    write("Nmea/Sbas", "7");
    EXPECT_THAT(lines(), ElementsAre(resultLine(15, R"(Set ARC_CheckModuleSetting("Nmea/Sbas", "on"))", 0),
                                     resultLine(15, R"(Set ARC_CheckModuleSetting("Nmea/Sbas", 7))", 0)));
}

TEST_F(SetModuleSetting, AnswersTrueExactlyWhenTheModemIndicated1)
{
    for (const int indicator : {-1, 0, 1, 2, 3, 256, 257}) {
        journal.clear();
        arcsim::answerNext(Function::CheckModuleSetting, {indicating(indicator)});
        write("k", "v");
        EXPECT_THAT(answers(), ElementsAre(indicator == 1 ? "answer(0, true)" : "answer(0, false)")) << indicator;
    }
}

TEST_F(SetModuleSetting, AnswersFalseWhenTheModemIndicatedNothing)
{
    arcsim::answerNext(Function::CheckModuleSetting, {{}});
    write("k", "v");
    EXPECT_THAT(answers(), ElementsAre("answer(0, false)"));
}

TEST_F(SetModuleSetting, KeepsTheIndicatorOfAFailedAttempt)
{
    arcsim::answerNext(Function::CheckModuleSetting, {indicating(1, 2), {}});
    write("k", "v");
    EXPECT_THAT(answers(), ElementsAre("answer(0, true)"));
}

TEST_F(SetModuleSetting, TakesTheIndicatorOfTheLastAttempt)
{
    arcsim::answerNext(Function::CheckModuleSetting, {indicating(1, 2), indicating(0)});
    write("k", "v");
    EXPECT_THAT(answers(), ElementsAre("answer(0, false)"));
}

TEST_F(SetModuleSetting, AnswersTheIndicatorAlsoWhenItGivesUp)
{
    arcsim::answerAlways(Function::CheckModuleSetting, indicating(1, 2));
    write("k", "v");
    EXPECT_EQ(callCount(Function::CheckModuleSetting), 15U);
    EXPECT_EQ(lines().back(), gaveUpLine(4, 434, "Set ARC_CheckModuleSetting(\"k\", v)"));
    EXPECT_THAT(answers(), ElementsAre("answer(2, true)"));
}

TEST_F(SetModuleSetting, AnswersFalseForFailuresThatIndicatedNothing)
{
    failTimes(Function::CheckModuleSetting, 15, 2);
    write("k", "v");
    EXPECT_THAT(answers(), ElementsAre("answer(2, false)"));
}

TEST_F(SetModuleSetting, AnswersGenericErrorAndFalseWithoutAnAttemptWhenClosed)
{
    close();
    write("k", "v");
    EXPECT_THAT(journal.texts(), ElementsAre("answer(32, false)"));
    EXPECT_EQ(callCount(Function::CheckModuleSetting), 0U);
}

TEST_F(SetModuleSetting, CopiesKeyAndValue)
{
    {
        const support::Gate gate = holdWorker();
        std::string key = "one";
        std::string value = "1";
        kelarc().setModuleSetting(key, value, answer());
        key = "two";
        value = "2";
    }
    settle();
    EXPECT_THAT(lastArguments(Function::CheckModuleSetting), ElementsAre("one", "1", "null", "0", "set"));
}

}  // namespace
