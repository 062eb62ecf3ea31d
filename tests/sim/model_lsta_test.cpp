#include "modem/Modem.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace {

using arcsim::modem::Lsta;
using arcsim::modem::LstaSystem;
using arcsim::modem::Modem;
using arcsim::modem::Reception;
using arcsim::modem::Scenario;
using std::chrono::milliseconds;

/// A modem whose receiver hears what the test sets in `heard`.
class AModemsLsta : public testing::Test
{
protected:
    void use(const Scenario& scenario)
    {
        modem.emplace(scenario, [this](LstaSystem system) { return heard[static_cast<std::size_t>(system)]; });
        modem->setEngineStart(milliseconds(0));
        modem->open();
    }

    void hear(LstaSystem system, int satellites, double meanCarrierDbHz)
    {
        heard[static_cast<std::size_t>(system)] = {satellites, meanCarrierDbHz};
    }

    /// "1000:1:41.5" for every report up to that time.
    std::vector<std::string> reportsAt(int ms)
    {
        std::vector<std::string> texts;
        for (const Modem::Event& event : modem->takeEvents(milliseconds(ms))) {
            EXPECT_EQ(event.id, 34);
            std::string value = std::to_string(event.lsta->value);
            texts.push_back(std::to_string(event.lsta->indicator) + ":" + std::to_string(event.lsta->status) + ":" +
                            value.substr(0, value.find('.') + 2));
        }
        return texts;
    }

    std::array<Reception, 4> heard{};
    std::optional<Modem> modem;
};

using Reports = std::vector<std::string>;

TEST_F(AModemsLsta, HasOneIndicatorForEachTechnologyId)
{
    use({});
    for (int id = 10; id <= 13; ++id) {
        const auto reply = modem->currentLsta(id, milliseconds(0));
        ASSERT_TRUE(reply.lsta.has_value()) << id;
        EXPECT_EQ(reply.lsta->indicator, 990 + id);
    }
}

TEST_F(AModemsLsta, DoesNotExistForOtherTechnologyIds)
{
    use({});
    for (const int id : {-1, 0, 9, 14, 1000}) {
        EXPECT_EQ(modem->currentLsta(id, milliseconds(0)).code, 13) << id;
        EXPECT_EQ(modem->enableLsta(id, true, 0, milliseconds(0)).code, 13) << id;
    }
}

TEST_F(AModemsLsta, IsZeroWhileTheEngineIsOff)
{
    use({});
    hear(LstaSystem::gps, 8, 42);
    const Lsta lsta = *modem->currentLsta(10, milliseconds(0)).lsta;
    EXPECT_EQ(lsta.status, 0);
    EXPECT_EQ(lsta.value, 0);
}

TEST_F(AModemsLsta, TellsTrackedSystemsByStatusAndSignalStrength)
{
    use({});
    modem->startGnss(milliseconds(0));
    hear(LstaSystem::glonass, 3, 37.5);
    EXPECT_EQ(modem->currentLsta(11, milliseconds(0)).lsta->status, 1);
    EXPECT_EQ(modem->currentLsta(11, milliseconds(0)).lsta->value, 37.5);
    EXPECT_EQ(modem->currentLsta(12, milliseconds(0)).lsta->status, 0);
}

TEST_F(AModemsLsta, IsNotReportedUnlessEnabled)
{
    use({});
    modem->startGnss(milliseconds(0));
    hear(LstaSystem::gps, 8, 42);
    EXPECT_EQ(reportsAt(10000), Reports{});
    EXPECT_EQ(modem->nextEvent(milliseconds(10000)), std::nullopt);
}

TEST_F(AModemsLsta, IsReportedAtFullSecondsWhenItHasChanged)
{
    use({});
    modem->startGnss(milliseconds(0));
    modem->enableLsta(10, true, 0, milliseconds(300));
    EXPECT_EQ(modem->nextEvent(milliseconds(300)), milliseconds(1000));
    EXPECT_EQ(reportsAt(1000), Reports{}) << "nothing is tracked yet";
    hear(LstaSystem::gps, 4, 40);
    EXPECT_EQ(reportsAt(1999), Reports{});
    EXPECT_EQ(reportsAt(2000), Reports{"1000:1:40.0"});
    EXPECT_EQ(reportsAt(3000), Reports{}) << "nothing has changed";
    hear(LstaSystem::gps, 5, 40.9);
    EXPECT_EQ(reportsAt(4000), Reports{}) << "moved by less than 1";
    hear(LstaSystem::gps, 6, 41);
    EXPECT_EQ(reportsAt(5000), Reports{"1000:1:41.0"});
    hear(LstaSystem::gps, 0, 0);
    EXPECT_EQ(reportsAt(6000), Reports{"1000:0:0.0"});
}

TEST_F(AModemsLsta, IsAlsoReportedEveryPeriodWhileTheEngineIsOn)
{
    use({});
    modem->enableLsta(13, true, 2, milliseconds(0));
    EXPECT_EQ(reportsAt(2000), Reports{}) << "the engine is off";
    modem->startGnss(milliseconds(2000));
    EXPECT_EQ(reportsAt(3000), Reports{"1003:0:0.0"});
    EXPECT_EQ(reportsAt(4000), Reports{});
    EXPECT_EQ(reportsAt(5000), Reports{"1003:0:0.0"});
}

TEST_F(AModemsLsta, IsReportedForAllEnabledSystemsInTheOrderOfTheirIndicators)
{
    use({});
    modem->startGnss(milliseconds(0));
    hear(LstaSystem::galileo, 3, 39);
    hear(LstaSystem::gps, 3, 40);
    hear(LstaSystem::beidou, 3, 38);
    modem->enableLsta(13, true, 0, milliseconds(0));
    modem->enableLsta(10, true, 0, milliseconds(0));
    EXPECT_EQ(reportsAt(1000), (Reports{"1000:1:40.0", "1003:1:39.0"}));
}

TEST_F(AModemsLsta, IsReportedAsZeroWhenTheEngineIsStopped)
{
    use({});
    modem->startGnss(milliseconds(0));
    hear(LstaSystem::gps, 3, 40);
    modem->enableLsta(10, true, 0, milliseconds(0));
    reportsAt(1000);
    modem->stopGnss(milliseconds(1500));
    EXPECT_EQ(reportsAt(2000), Reports{"1000:0:0.0"});
}

TEST_F(AModemsLsta, IsNoLongerReportedOnceDisabledOrClosed)
{
    use({});
    modem->startGnss(milliseconds(0));
    modem->enableLsta(10, true, 0, milliseconds(0));
    modem->enableLsta(11, true, 0, milliseconds(0));
    hear(LstaSystem::gps, 3, 40);
    hear(LstaSystem::glonass, 3, 37);
    modem->enableLsta(10, false, 0, milliseconds(500));
    EXPECT_EQ(reportsAt(1000), Reports{"1001:1:37.0"});
    modem->close(milliseconds(1500));
    EXPECT_EQ(modem->nextEvent(milliseconds(1500)), std::nullopt);
}

Scenario withGpsLossAndComeback()
{
    Scenario scenario;
    scenario.lstaChanges = {{milliseconds(2500), LstaSystem::gps, 0, 0},
                            {milliseconds(7000), LstaSystem::gps, 2, 12.5}};
    return scenario;
}

TEST_F(AModemsLsta, IsWhatThePlannedChangesSayFromTheirTimeOn)
{
    use(withGpsLossAndComeback());
    modem->startGnss(milliseconds(0));
    hear(LstaSystem::gps, 8, 42);
    EXPECT_EQ(modem->currentLsta(10, milliseconds(2499)).lsta->status, 1);
    EXPECT_EQ(modem->currentLsta(10, milliseconds(2500)).lsta->status, 0);
    EXPECT_EQ(modem->currentLsta(10, milliseconds(7000)).lsta->status, 2);
    EXPECT_EQ(modem->currentLsta(10, milliseconds(7000)).lsta->value, 12.5);
}

TEST_F(AModemsLsta, IsReportedAtTheMomentOfAPlannedChange)
{
    use(withGpsLossAndComeback());
    modem->startGnss(milliseconds(0));
    hear(LstaSystem::gps, 8, 42);
    modem->enableLsta(10, true, 0, milliseconds(0));
    EXPECT_EQ(reportsAt(1000), Reports{"1000:1:42.0"});
    EXPECT_EQ(reportsAt(2000), Reports{});
    EXPECT_EQ(modem->nextEvent(milliseconds(2000)), milliseconds(2500));
    EXPECT_EQ(reportsAt(2500), Reports{"1000:0:0.0"});
}

TEST_F(AModemsLsta, OfStatusZeroByPlanMeansThatTheSystemIsBlocked)
{
    use(withGpsLossAndComeback());
    EXPECT_FALSE(modem->isBlocked(LstaSystem::gps, milliseconds(2499)));
    EXPECT_TRUE(modem->isBlocked(LstaSystem::gps, milliseconds(2500)));
    EXPECT_FALSE(modem->isBlocked(LstaSystem::glonass, milliseconds(2500)));
    EXPECT_FALSE(modem->isBlocked(LstaSystem::gps, milliseconds(7000)));
}

}  // namespace
