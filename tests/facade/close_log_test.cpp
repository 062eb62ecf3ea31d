#include "support/KelArcTest.h"

#include <cstring>
#include <optional>

namespace {

using support::Function;
using support::resultLine;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

class OpenState : public support::KelArcTest
{
};

TEST_F(OpenState, IsTheNewOneWhileTheSuccessOfOpeningAndOfClosingIsLogged)
{
    std::optional<kelarc::KelArc> modem;
    std::vector<std::string> states;
    modem.emplace([&](int level, const char* line) {
        for (const char* const call : {"ARC_Open()", "ARC_Close()"})
            if (std::strstr(line, call) != nullptr)
                states.push_back(std::to_string(level) + " " + call + (modem->isOpen() ? " open" : " closed"));
    });
    for (const Function function : {Function::Open, Function::Close})
        failTimes(function, 1, 2);
    modem->open(answer());
    ASSERT_TRUE(journal.waitFor(support::Kind::answer, 1));
    modem->close(answer());
    ASSERT_TRUE(journal.waitFor(support::Kind::answer, 2));
    EXPECT_THAT(states, ::testing::ElementsAre("4 ARC_Open() closed", "2 ARC_Open() open", "4 ARC_Close() open",
                                               "2 ARC_Close() closed"));
}

class CloseLog : public support::KelArcTest
{
};

TEST_F(CloseLog, HasNoGiveUpLineAfterFifteenFailuresEvenIfAStopMadeTheObjectActive)
{
    open();
    auto gate = holdWorker();
    kelarc().stopGNSS(answer("stop"));
    kelarc().close(answer("close"));
    journal.clear();
    failTimes(Function::Close, 15, 2);
    gate.open();
    settle();
    EXPECT_THAT(lines(), Contains(resultLine(0, "ARC_Close()", 2)));
    EXPECT_THAT(lines(), Not(Contains(HasSubstr("Could not call"))));
    EXPECT_THAT(answers(), ::testing::ElementsAre("stop(0)", "close(2)"));
}

}  // namespace
