// Starting, stopping and changing a running feed.

#include "receiver/Feed.h"

#include "sim/receiver_reader.h"

#include <gtest/gtest.h>

namespace {

using namespace arcsim;
using namespace receiver_test;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(ReceiverControl, SettingsTakeEffectWhileRunning)
{
    Feed feed(hotStart(), {});
    Reader reader(feed.path());
    feed.start();
    ASSERT_TRUE(reader.readEpochs(1));
    ReceiverSettings settings = fast();
    settings.galileo = false;
    feed.apply(settings);
    const Clock::time_point begin = Clock::now();
    ASSERT_TRUE(reader.readEpochs(12));
    EXPECT_GE(Clock::now() - begin, 900ms);  // ten whole periods lie between the eleven new epochs
    feed.stop();
    const std::string& bytes = reader.received();
    const std::size_t second = bytes.find("$GNRMC", 1);
    EXPECT_EQ(gsvTalkers(bytes.substr(0, second)).count("GA"), 1U);
    EXPECT_EQ(gsvTalkers(bytes.substr(second, bytes.rfind('\n') + 1 - second)).count("GA"), 0U);
    EXPECT_NE(reader.rmcTimes()[2].substr(7), reader.rmcTimes()[1].substr(7)) << "tenths of seconds";
}

TEST(ReceiverControl, SettingsChangedAroundTheStartCostNoEpoch)
{
    Feed feed(hotStart(), {});
    Reader reader(feed.path());
    feed.apply(fast());
    feed.start();
    ASSERT_TRUE(reader.readEpochs(1));
    feed.stop();
    EXPECT_EQ(reader.rmcTimes()[0], "030000.00");
}

TEST(ReceiverControl, FormatChangesAtAnEpochAndBack)
{
    Feed feed(hotStart(), fast());
    Reader reader(feed.path());
    feed.start();
    ASSERT_TRUE(reader.readEpochs(1));
    ReceiverSettings raw = fast();
    raw.format = OutputFormat::Raw;
    feed.apply(raw);
    ASSERT_TRUE(await([&] {
        reader.take();
        return sentences(reader.received(), "PSIM").size() > 100;
    }));
    feed.apply(fast());
    const std::size_t count = reader.rmcTimes().size();
    ASSERT_TRUE(reader.readEpochs(count + 2));
    feed.stop();
    expectValid(reader.completeLines());
}

TEST(ReceiverControl, RefusedSettingsChangeNothing)
{
    Feed feed(hotStart(), fast());
    ReceiverSettings settings = fast();
    settings.period = 0ms;
    EXPECT_THROW(feed.apply(settings), std::invalid_argument);
    EXPECT_THROW(Feed(hotStart(), settings), std::invalid_argument);
    Reader reader(feed.path());
    feed.start();
    EXPECT_TRUE(reader.readEpochs(3));
}

TEST(ReceiverControl, RestartedEngineKeepsTheTerminalAndAcquiresAnew)
{
    Feed feed(hotStart(), fast());
    Reader reader(feed.path());
    const std::string path = feed.path();
    feed.start();
    ASSERT_TRUE(reader.readEpochs(2));
    feed.stop();
    while (!reader.take().empty()) {
    }
    const std::size_t before = reader.received().size();
    feed.start(1min, 1h);  // a minute later, with everything forgotten
    ASSERT_TRUE(reader.readEpochs(reader.rmcTimes().size() + 1));
    feed.stop();
    EXPECT_EQ(feed.path(), path);
    EXPECT_EQ(sentences(reader.received().substr(0, before), "RMC")[0][2], "A");
    EXPECT_EQ(sentences(reader.received().substr(before), "RMC")[0][2], "V");
}

TEST(ReceiverControl, StartingTwiceAndStoppingTwiceIsHarmless)
{
    Feed feed(hotStart(), fast());
    feed.stop();
    feed.start();
    feed.start();
    feed.stop();
    feed.stop();
    EXPECT_FALSE(feed.isStarted());
}

TEST(ReceiverControl, StatusIsThatOfTheLastEpochAndEmptyWhenStopped)
{
    Feed feed(hotStart(), fast());
    EXPECT_EQ(feed.status().fix, FixState::None);
    feed.start();
    EXPECT_TRUE(await([&] { return feed.status().fix == FixState::Fix3D; }));
    EXPECT_GT(feed.status().of(GnssSystem::Beidou).tracked, 3);
    feed.stop();
    EXPECT_EQ(feed.status().fix, FixState::None);
    EXPECT_EQ(feed.status().of(GnssSystem::Beidou).tracked, 0);
}

TEST(ReceiverControl, BlockedSystemIsLostAndComesBack)
{
    Feed feed(hotStart(), fast());
    feed.setBlocked(GnssSystem::Glonass, true);
    feed.start();
    EXPECT_TRUE(await([&] { return feed.status().of(GnssSystem::Gps).tracked > 0; }));
    EXPECT_EQ(feed.status().of(GnssSystem::Glonass).tracked, 0);
    EXPECT_GT(feed.status().of(GnssSystem::Glonass).inView, 0);
    feed.setBlocked(GnssSystem::Glonass, false);
    EXPECT_TRUE(await([&] { return feed.status().of(GnssSystem::Glonass).tracked > 0; }));
}

TEST(ReceiverControl, ImpossibleRouteIsRefusedAtOnce)
{
    ReceiverScenario scenario;
    scenario.route.clear();
    EXPECT_THROW(Feed(scenario, {}), std::runtime_error);
}

}  // namespace
