#include "support/KelArcTest.h"

#include <cstring>

namespace {

using kelarc::LOGGING_ZONE;
using kelarc::RilVersion;
using support::Function;
using support::gaveUpLine;
using support::Kind;
using support::kPause;
using support::reply;
using support::resultLine;
using support::Strings;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GetArcVersion : public support::KelArcTest
{
protected:
    static Strings fifteenFailures()
    {
        Strings lines;
        for (int left = 14; left >= 0; --left)
            lines.push_back(resultLine(left, "ARC_GetArcVersion()", 32));
        return lines;
    }
};

TEST_F(GetArcVersion, AnswersTheLibrarysText)
{
    arcsim::answerNext(Function::GetArcVersion, {reply("3.1 \"beta\"")});
    kelarc().getArcVersion(answer());
    settle();
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(15, "ARC_GetArcVersion()", 0), "answer(0, '3.1 \"beta\"')"));
}

TEST_F(GetArcVersion, AnswersAnEmptyTextAsItIs)
{
    arcsim::answerNext(Function::GetArcVersion, {reply("")});
    kelarc().getArcVersion(answer());
    settle();
    EXPECT_THAT(answers(), ElementsAre("answer(0, '')"));
}

TEST_F(GetArcVersion, TakesNoTextForAGenericError)
{
    open();
    failTimes(Function::GetArcVersion, 15, 7);
    kelarc().getArcVersion(answer());
    settle();
    Strings expected = fifteenFailures();
    expected.push_back(gaveUpLine(4, 291, "ARC_GetArcVersion()"));
    EXPECT_EQ(lines(), expected);
    EXPECT_THAT(answers(), ElementsAre("answer(32, '<UNKNOWN>')"));
}

TEST_F(GetArcVersion, SaysNothingOfGivingUpOnAClosedObject)
{
    failTimes(Function::GetArcVersion, 15, 7);
    kelarc().getArcVersion(answer());
    settle();
    EXPECT_EQ(lines(), fifteenFailures());
    EXPECT_THAT(answers(), ElementsAre("answer(32, '<UNKNOWN>')"));
}

TEST_F(GetArcVersion, AnswersTheTextOfALaterAttempt)
{
    arcsim::answerCall(Function::GetArcVersion, 1, reply("lost", 1));
    arcsim::answerCall(Function::GetArcVersion, 2, reply("2.0"));
    kelarc().getArcVersion(answer());
    settle();
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(14, "ARC_GetArcVersion()", 32), kPause,
                                             resultLine(14, "ARC_GetArcVersion()", 0), "answer(0, '2.0')"));
}

class GetRilVersion : public support::KelArcTest
{
protected:
    static arcsim::Answer texts(const std::string& first, const std::string& second, int code = 0)
    {
        arcsim::Answer answer = reply(first, code);
        answer.secondText = second;
        return answer;
    }
};

TEST_F(GetRilVersion, AnswersBothTexts)
{
    arcsim::answerNext(Function::GetRilVersion, {texts("RIL 4", "FW 17")});
    kelarc().getRilVersion(answer());
    settle();
    EXPECT_THAT(answers(), ElementsAre("answer(0, 'RIL 4', 'FW 17')"));
    EXPECT_THAT(lastArguments(Function::GetRilVersion), ElementsAre("set", "set", "64"));
}

TEST_F(GetRilVersion, PassesOnTextsThatFillTheirArrays)
{
    const std::string first(64, 'p');
    const std::string second(64, 's');
    arcsim::Answer full = texts(first, second);
    full.terminated = false;
    arcsim::answerNext(Function::GetRilVersion, {full});
    RilVersion version{};
    kelarc().getRilVersion([&](int, RilVersion&& given) { version = given; });
    settle();
    EXPECT_EQ(std::memcmp(version.primary, first.data(), 64), 0);
    EXPECT_EQ(std::memcmp(version.secondary, second.data(), 64), 0);
}

TEST_F(GetRilVersion, HandsOverZerosWhereNothingWasWritten)
{
    failTimes(Function::GetRilVersion, 15, 2);
    RilVersion version;
    std::memset(&version, 'x', sizeof version);
    int code = 0;
    kelarc().getRilVersion([&](int given, RilVersion&& record) {
        code = given;
        version = record;
    });
    settle();
    EXPECT_EQ(code, 2);
    const RilVersion zeros{};
    EXPECT_EQ(std::memcmp(&version, &zeros, sizeof version), 0);
}

TEST_F(GetRilVersion, KeepsWhatAFailedAttemptWrote)
{
    arcsim::answerCall(Function::GetRilVersion, 1, texts("half", "done", 2));
    arcsim::answerCall(Function::GetRilVersion, 2, {});
    kelarc().getRilVersion(answer());
    settle();
    EXPECT_THAT(answers(), ElementsAre("answer(0, 'half', 'done')"));
}

TEST_F(GetRilVersion, AnswersWhatFailedAttemptsWroteWhenItGivesUp)
{
    open();
    arcsim::answerAlways(Function::GetRilVersion, texts("left", "over", 33));
    kelarc().getRilVersion(answer());
    settle();
    EXPECT_EQ(journal.texts().at(journal.texts().size() - 2), gaveUpLine(4, 321, "ARC_GetRilVersion()"));
    EXPECT_THAT(answers(), ElementsAre("answer(33, 'left', 'over')"));
}

TEST_F(GetRilVersion, ReachesTheLibraryBeforeOpen)
{
    kelarc().getRilVersion(answer());
    settle();
    EXPECT_EQ(callCount(Function::GetRilVersion), 15U);
    EXPECT_EQ(lines().front(), resultLine(14, "ARC_GetRilVersion()", 1));
    EXPECT_THAT(answers(), ElementsAre("answer(1, '', '')"));
}

class EnableLogging : public support::KelArcTest
{
protected:
    /// The line and the arguments of a successful call.
    void enable(int zone, const std::string& text)
    {
        arcsim::answerNext(Function::EnableLogging, {{}});
        kelarc().enableLogging(LOGGING_ZONE{zone}, text, answer());
        settle();
    }
};

TEST_F(EnableLogging, PassesOnZoneAndText)
{
    enable(3, "verbose");
    EXPECT_THAT(lastArguments(Function::EnableLogging), ElementsAre("3", "verbose"));
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(15, R"(ARC_EnableLogging("3", "verbose"))", 0), "answer(0)"));
}

TEST_F(EnableLogging, AcceptsAnEmptyText)
{
    enable(0, "");
    EXPECT_THAT(lastArguments(Function::EnableLogging), ElementsAre("0", ""));
    EXPECT_THAT(lines(), ElementsAre(resultLine(15, R"(ARC_EnableLogging("0", ""))", 0)));
}

TEST_F(EnableLogging, AcceptsAnyZoneAndEscapesNothing)
{
    enable(-2147483647, "a \"b\" %s");
    EXPECT_THAT(lastArguments(Function::EnableLogging), ElementsAre("-2147483647", "a \"b\" %s"));
    EXPECT_THAT(lines(), ElementsAre(resultLine(15, R"(ARC_EnableLogging("-2147483647", "a "b" %s"))", 0)));
}

TEST_F(EnableLogging, CopiesTheText)
{
    arcsim::answerNext(Function::EnableLogging, {{}});
    {
        const support::Gate gate = holdWorker();
        std::string text = "before";
        kelarc().enableLogging(LOGGING_ZONE{1}, text, answer());
        text = "after!";
    }
    settle();
    EXPECT_THAT(lastArguments(Function::EnableLogging), ElementsAre("1", "before"));
}

TEST_F(EnableLogging, ReachesTheLibraryBeforeOpen)
{
    kelarc().enableLogging(LOGGING_ZONE{1}, "x", answer());
    settle();
    EXPECT_EQ(callCount(Function::EnableLogging), 15U);
    EXPECT_THAT(answers(), ElementsAre("answer(1)"));
}

class AtCommand : public support::KelArcTest
{
};

TEST_F(AtCommand, PassesOnTheCommandWithoutAnAnswerBuffer)
{
    open();
    kelarc().ATcmd("AT+CGMI=\"x\"", answer());
    settle();
    EXPECT_THAT(lastArguments(Function::AtcTunneling), ElementsAre("AT+CGMI=\"x\"", "null"));
}

TEST_F(AtCommand, AnswersUnknownWhateverTheModemSays)
{
    open();
    arcsim::answerNext(Function::AtcTunneling, {reply("OK")});
    kelarc().ATcmd("AT", answer());
    settle();
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(15, "ARC_AtcTunneling(\"AT\")", 0), "answer(0, '<UNKNOWN>')"));
}

TEST_F(AtCommand, AnswersGenericErrorWithoutAnAttemptBeforeOpen)
{
    kelarc().ATcmd("AT", answer());
    settle();
    EXPECT_THAT(journal.texts(), ElementsAre("answer(32, '<UNKNOWN>')"));
    EXPECT_THAT(arcsim::calls(), IsEmpty());
}

TEST_F(AtCommand, AcceptsAnEmptyCommand)
{
    open();
    arcsim::answerNext(Function::AtcTunneling, {{}});
    kelarc().ATcmd("", answer());
    settle();
    EXPECT_THAT(lastArguments(Function::AtcTunneling), ElementsAre("", "null"));
    EXPECT_THAT(lines(), ElementsAre(resultLine(15, "ARC_AtcTunneling(\"\")", 0)));
}

TEST_F(AtCommand, CopiesTheCommand)
{
    open();
    arcsim::answerNext(Function::AtcTunneling, {{}});
    {
        const support::Gate gate = holdWorker();
        std::string command = "ATI";
        kelarc().ATcmd(command, answer());
        command = "ATZ";
    }
    settle();
    EXPECT_THAT(lastArguments(Function::AtcTunneling), ElementsAre("ATI", "null"));
}

TEST_F(AtCommand, SucceedsAtTheThirdAttemptWithoutAGiveUpLine)
{
    open();
    failTimes(Function::AtcTunneling, 2, 39);
    kelarc().ATcmd("AT", answer());
    settle();
    const std::string call = "ARC_AtcTunneling(\"AT\")";
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(14, call, 39), kPause, resultLine(13, call, 39), kPause,
                                             resultLine(13, call, 0), "answer(0, '<UNKNOWN>')"));
}

}  // namespace
