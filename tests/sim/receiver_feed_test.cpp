// The pseudo-terminal: what a reader gets, and what happens without one.

#include "receiver/Feed.h"

#include "sim/receiver_reader.h"

#include <future>
#include <gtest/gtest.h>
#include <termios.h>

namespace {

using namespace arcsim;
using namespace receiver_test;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(ReceiverFeed, ReaderGetsWholeEpochsInOrder)
{
    Feed feed(hotStart(), fast());
    Reader reader(feed.path());
    feed.start();
    ASSERT_TRUE(reader.readEpochs(4));
    feed.stop();
    expectValid(reader.completeLines());
    const std::vector<std::string> times = reader.rmcTimes();
    EXPECT_EQ(std::vector<std::string>(times.begin(), times.begin() + 4),
              (std::vector<std::string>{"030000.00", "030000.10", "030000.20", "030000.30"}));
}

TEST(ReceiverFeed, EpochsKeepThePeriod)
{
    Feed feed(hotStart(), fast());
    Reader reader(feed.path());
    const Clock::time_point begin = Clock::now();
    feed.start();
    ASSERT_TRUE(reader.readEpochs(6));
    EXPECT_GE(Clock::now() - begin, 500ms);
}

TEST(ReceiverFeed, TerminalIsRaw)
{
    Feed feed(hotStart(), fast());
    const Reader reader(feed.path());
    termios mode{};
    ASSERT_EQ(::tcgetattr(reader.file(), &mode), 0);
    EXPECT_EQ(mode.c_lflag & tcflag_t(ICANON | ECHO | ISIG), 0U);
    EXPECT_EQ(mode.c_iflag & tcflag_t(ICRNL | IXON), 0U);
    EXPECT_EQ(mode.c_oflag & tcflag_t(OPOST), 0U);
}

TEST(ReceiverFeed, NothingIsWrittenBeforeStartAndAfterStop)
{
    Feed feed(hotStart(), fast());
    Reader reader(feed.path());
    EXPECT_FALSE(feed.isStarted());
    EXPECT_EQ(reader.take(), "");
    feed.start();
    EXPECT_TRUE(feed.isStarted());
    ASSERT_TRUE(reader.readEpochs(2));
    feed.stop();
    EXPECT_FALSE(feed.isStarted());
    const auto written = feed.counters().written;
    ASSERT_TRUE(await([&] { return reader.take().empty(); }));
    expectValid(reader.completeLines());
    EXPECT_EQ(sentences(reader.received(), "RMC").size(), written);
}

TEST(ReceiverFeed, StopDoesNotWaitForTheNextEpoch)
{
    const TemporaryFile recording("$GPZDA,030000.00,12,06,2024,,*64\r\n"
                                  "$GPZDA,150000.00,12,06,2024,,*63\r\n");  // which is half a day later
    ReceiverScenario scenario;
    scenario.replayFile = recording.path();
    Feed feed(scenario, {});
    Reader reader(feed.path());
    feed.start();
    ASSERT_TRUE(await([&] { return !reader.take().empty(); }));
    auto stopped = std::async(std::launch::async, [&] { feed.stop(); });
    EXPECT_EQ(stopped.wait_for(30s), std::future_status::ready);
}

TEST(ReceiverFeed, WithoutAReaderEpochsAreCountedAndStopReturns)
{
    Feed feed(hotStart(), fast());
    feed.start();
    EXPECT_TRUE(await([&] { return feed.counters().unheard >= 3; }));
    feed.stop();
    EXPECT_EQ(feed.counters().written, 0U);
    EXPECT_EQ(feed.counters().dropped, 0U);
}

TEST(ReceiverFeed, ReaderThatComesLateGetsWhatHappensNow)
{
    Feed feed(hotStart(), fast());
    feed.start();
    ASSERT_TRUE(await([&] { return feed.counters().unheard >= 5; }));
    Reader reader(feed.path());
    ASSERT_TRUE(reader.readEpochs(2));
    feed.stop();
    EXPECT_EQ(reader.received().substr(0, 7), "$GNRMC,");
    expectValid(reader.completeLines());
    EXPECT_GE(reader.rmcTimes()[0], "030000.50");
}

TEST(ReceiverFeed, ReaderAfterOneThatLeftWithinALineBeginsWithAWholeEpoch)
{
    Feed feed(hotStart(), fast());
    feed.start();
    {
        Reader first(feed.path());
        ASSERT_TRUE(await([&] { return !first.take(10).empty(); }));
    }
    const auto unheard = feed.counters().unheard;
    ASSERT_TRUE(await([&] { return feed.counters().unheard > unheard + 1; }));
    Reader second(feed.path());
    ASSERT_TRUE(second.readEpochs(2));
    feed.stop();
    EXPECT_EQ(second.received().substr(0, 7), "$GNRMC,");
    expectValid(second.completeLines());
}

TEST(ReceiverFeed, SlowReaderLosesWholeEpochsAndNeverPartsOfLines)
{
    Feed feed(hotStart(), fast());
    Reader reader(feed.path());
    feed.start();
    ASSERT_TRUE(await([&] { return feed.counters().dropped >= 3; }));
    const std::size_t before = static_cast<std::size_t>(feed.counters().written);
    ASSERT_TRUE(reader.readEpochs(before + 4));
    feed.stop();
    expectValid(reader.completeLines());
    const std::vector<std::string> times = reader.rmcTimes();
    EXPECT_EQ(std::set<std::string>(times.begin(), times.end()).size(), times.size());
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
    // The last epoch may still be on its way.
    const std::string earlier = reader.received().substr(0, reader.received().rfind("$GNRMC,"));
    EXPECT_EQ(sentences(earlier, "GGA").size(), sentences(earlier, "RMC").size()) << "epochs are whole";
}

TEST(ReceiverFeed, StopIsPromptWhileAReaderDoesNotRead)
{
    Feed feed(hotStart(), fast());
    Reader reader(feed.path());
    feed.start();
    ASSERT_TRUE(await([&] { return feed.counters().dropped >= 1; }));
    feed.stop();
    // The epoch that was cut short goes on at the next start.
    feed.start();
    ASSERT_TRUE(reader.readEpochs(static_cast<std::size_t>(feed.counters().written) + 3));
    feed.stop();
    expectValid(reader.completeLines());
}

TEST(ReceiverFeed, WhatTheReaderSendsNeverFillsTheTerminal)
{
    Feed feed(hotStart(), fast());
    Reader reader(feed.path());
    feed.start();
    const std::string command(1000, 'x');
    std::size_t sent = 0;
    EXPECT_TRUE(await([&] {
        const ssize_t count = ::write(reader.file(), command.data(), command.size());
        sent += count > 0 ? static_cast<std::size_t>(count) : 0;
        reader.take();
        return sent >= 100000;  // several times of what the buffers hold
    })) << "sent "
        << sent;
    feed.stop();
    expectValid(reader.completeLines());
}

}  // namespace
