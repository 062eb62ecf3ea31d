#include "support/KelArcTest.h"

// The numbers and lines that belong to each satellite system in LSTA requests and notifications.

namespace contract {
namespace {

using kelarc::NOTIFY_ID;
using kelarc::lsta::TECH;
using kelarc::lsta::TYPE;
using support::Function;
using support::Kind;
using support::lstaInfo;
using support::resultLine;
using support::Strings;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct PublishedTech
{
    const char* name;
    int tech;
    int arcId;
    int indicator;
    int type;
    const char* missingCallbackLine;
};

const std::vector<PublishedTech> kTechs = {
    {"Gps", 1, 10, 1000, 7, "4 KelArc::notifyLsta.1263: No callback defined for GPS LSTA notifications!"},
    {"Glonass", 2, 11, 1001, 8, "4 KelArc::notifyLsta.1276: No callback defined for Glonass LSTA notifications!"},
    {"BeiDou", 3, 12, 1002, 9, "4 KelArc::notifyLsta.1302: No callback defined for BeiDou LSTA notifications!"},
    {"Galileo", 4, 13, 1003, 10, "4 KelArc::notifyLsta.1289: No callback defined for Galileo LSTA notifications!"},
};

class EveryTech : public support::KelArcTest, public ::testing::WithParamInterface<PublishedTech>
{
protected:
    EveryTech()
    {
        open();
        kelarc().setNotificationCB(event("user"));
        settle();
        journal.clear();
    }

    TECH tech() const { return static_cast<TECH>(GetParam().tech); }

    std::string queryText() const { return "ARC_CurrentLSTA(\"" + std::to_string(GetParam().arcId) + "\")"; }

    void query(const LstaInfo& record)
    {
        arcsim::Answer answered;
        answered.record = record;
        arcsim::answerNext(Function::CurrentLSTA, {answered});
        kelarc().getLstaGnss(tech(), answer());
        settle();
    }

    void installCallback(TECH forTech)
    {
        arcsim::answerNext(Function::EnableLSTA, {{}});
        kelarc().setLstaGnssStatus(forTech, true, 0, event("lsta"), answer());
        settle();
        journal.clear();
    }

    static void notify(int indicator)
    {
        LstaInfo info = lstaInfo(indicator, 3, 1.5);
        ASSERT_TRUE(arcsim::deliverEvent(34, &info, sizeof info));
    }
};

TEST_P(EveryTech, IsQueriedByItsArcId)
{
    query(lstaInfo(GetParam().indicator, 1, 2.0));
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(15, queryText(), 0), "answer(0, true, 2)"));
    EXPECT_THAT(lastArguments(Function::CurrentLSTA), ElementsAre(std::to_string(GetParam().arcId), "set"));
}

TEST_P(EveryTech, IsDescribedByNoOtherIndicator)
{
    for (const int indicator : {0, 1, 10, 11, 12, 13, 999, 1000, 1001, 1002, 1003, 1004, -1}) {
        if (indicator == GetParam().indicator)
            continue;
        journal.clear();
        query(lstaInfo(indicator, 1, 2.0));
        EXPECT_THAT(journal.texts(),
                    ElementsAre(resultLine(15, queryText(), 0),
                                "4 KelArc::operator().1093: Received wrong indicator " + std::to_string(indicator) +
                                    " from '" + queryText() + "', expected " + std::to_string(GetParam().arcId),
                                "answer(0, false, 0)"));
    }
}

TEST_P(EveryTech, IsEnabledByItsArcId)
{
    arcsim::answerNext(Function::EnableLSTA, {{}, {}});
    kelarc().setLstaGnssStatus(tech(), true, 7, nullptr, answer());
    kelarc().setLstaGnssStatus(tech(), false, -1, nullptr, answer());
    settle();
    const std::string id = std::to_string(GetParam().arcId);
    EXPECT_THAT(lines(), ElementsAre(resultLine(15, "ARC_EnableLSTA(\"" + id + "\", \"1\", \"7\")", 0),
                                     resultLine(15, "ARC_EnableLSTA(\"" + id + "\", \"0\", \"-1\")", 0)));
    EXPECT_THAT(arcsim::calls(Function::EnableLSTA).at(0).arguments, ElementsAre(id, "1", "7"));
    EXPECT_THAT(arcsim::calls(Function::EnableLSTA).at(1).arguments, ElementsAre(id, "0", "-1"));
}

TEST_P(EveryTech, IsNotifiedWithItsOwnType)
{
    installCallback(tech());
    notify(GetParam().indicator);
    EXPECT_THAT(journal.texts(), ElementsAre("lsta(" + std::to_string(GetParam().type) + ", 3, 1.500000)"));
}

TEST_P(EveryTech, LogsItsOwnLineWhenItHasNoCallback)
{
    for (const PublishedTech& other : kTechs)
        if (other.tech != GetParam().tech)
            installCallback(static_cast<TECH>(other.tech));
    notify(GetParam().indicator);
    EXPECT_THAT(journal.texts(), ElementsAre(GetParam().missingCallbackLine));
    EXPECT_EQ(journal.entries().at(0).thread, arcsim::notificationThread());
}

TEST_P(EveryTech, GetsOnlyItsOwnNotifications)
{
    installCallback(tech());
    for (const PublishedTech& other : kTechs)
        if (other.tech != GetParam().tech)
            notify(other.indicator);
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(lines().size(), 3U);
}

INSTANTIATE_TEST_SUITE_P(Published, EveryTech, ::testing::ValuesIn(kTechs), support::ByName());

}  // namespace
}  // namespace contract
