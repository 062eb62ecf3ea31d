// The feed in steps: when epochs are made, and who has taken what of them.

#include "receiver/Feed.h"

#include "sim/receiver_reader.h"

#include <atomic>
#include <gtest/gtest.h>
#include <termios.h>
#include <thread>

namespace {

using namespace arcsim;
using namespace receiver_test;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

Feed inSteps(const ReceiverScenario& scenario, const ReceiverSettings& settings = {})
{
    return Feed(scenario, settings, Feed::Pace::steps);
}

/// Asks without a pause, as an owner does who has an hour to get through; false after half a minute.
bool becomesReady(Feed& feed)
{
    const auto limit = Clock::now() + 30s;
    while (!feed.isReady()) {
        if (Clock::now() > limit)
            return false;
        std::this_thread::yield();
    }
    return true;
}

/// Hands over what is kept; the reader takes all of it.
bool deliver(Feed& feed, Reader& reader)
{
    return await([&] {
        while (!reader.take().empty()) {
        }
        return feed.isReady();
    });
}

/// Reads on a thread, in pieces of the given sizes in turn.
class ReadingThread
{
public:
    ReadingThread(const std::string& path, std::vector<std::size_t> pieces)
        : m_reader(path), m_thread([this, pieces] {
              for (std::size_t turn = 0; !m_end; ++turn) {
                  const std::size_t most = pieces[turn % pieces.size()];
                  pollfd input{m_reader.file(), POLLIN, 0};
                  if (::poll(&input, 1, 5) == 0)
                      continue;
                  m_asked = m_reader.received().size() + most;
                  m_reader.take(most);
              }
          })
    {
    }
    ~ReadingThread() { finish(); }
    ReadingThread(const ReadingThread&) = delete;
    ReadingThread& operator=(const ReadingThread&) = delete;

    /// All that has been read, and what the read that may be going on has asked for.
    std::size_t asked() const { return m_asked; }

    const std::string& finish()
    {
        m_end = true;
        if (m_thread.joinable())
            m_thread.join();
        return m_reader.received();
    }

private:
    std::atomic<bool> m_end{false};
    std::atomic<std::size_t> m_asked{0};
    Reader m_reader;  // of the thread's
    std::thread m_thread;
};

/// Sentences of a made-up recording, an epoch a second, and about so long each.
std::string recording(int epochs, std::size_t length)
{
    std::string content;
    for (int i = 0; i < epochs; ++i) {
        char gga[32];
        std::snprintf(gga, sizeof gga, "GPGGA,%02d%02d%02d", i / 3600, i / 60 % 60, i % 60);
        const std::string body = gga + std::string(",4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
        int sum = 0;
        for (const char character : body)
            sum ^= character;
        char end[8];
        std::snprintf(end, sizeof end, "*%02X\r\n", static_cast<unsigned>(sum));
        content += '$' + body + end;
        for (std::size_t written = 80; written < length; written += 40)
            content += "$PSIM," + std::to_string(1000000 + i) + ",garbage that is no sentence\n";
    }
    return content;
}

ReceiverScenario replayOf(const TemporaryFile& file)
{
    ReceiverScenario scenario;
    scenario.replayFile = file.path();
    return scenario;
}

/// One run from a cold start, epoch by epoch, each as soon as the reader has had the one before.
std::string run(const ReceiverSettings& settings, milliseconds until)
{
    Feed feed(ReceiverScenario{}, settings, Feed::Pace::steps);
    ReadingThread reader(feed.path(), {4096});
    feed.start();
    for (std::optional<milliseconds> next; (next = feed.nextEpoch()) && *next < until;) {
        feed.step(*next);
        if (!becomesReady(feed))
            return "the reader never had it all";
    }
    feed.stop();
    return reader.finish();
}

TEST(ReceiverSteps, EpochsComeOnlyWhenTheirTimeIsGiven)
{
    Feed feed = inSteps(hotStart());
    Reader reader(feed.path());
    feed.start();
    EXPECT_EQ(feed.nextEpoch(), 0ms);
    feed.step(0ms);
    EXPECT_EQ(feed.nextEpoch(), 1000ms);
    feed.step(999ms);
    ASSERT_TRUE(deliver(feed, reader));
    EXPECT_EQ(reader.rmcTimes(), (std::vector<std::string>{"030000.00"}));
    feed.step(1000ms);
    feed.step(1000ms);
    feed.step(500ms);
    ASSERT_TRUE(deliver(feed, reader));
    EXPECT_EQ(reader.rmcTimes(), (std::vector<std::string>{"030000.00", "030001.00"}));
    EXPECT_EQ(feed.counters().written, 2U);
}

TEST(ReceiverSteps, EpochsAreTheSameAsTheReceiverMakesThem)
{
    Feed feed = inSteps(hotStart());
    Reader reader(feed.path());
    feed.start();
    feed.step(2000ms);
    ASSERT_TRUE(deliver(feed, reader));
    EXPECT_EQ(reader.received(), epochWith({}) + epochWith({}, 1s) + epochWith({}, 2s));
}

TEST(ReceiverSteps, EngineThatStartsLateHasItsEpochsAtScenarioTimes)
{
    Feed feed = inSteps(hotStart());
    Reader reader(feed.path());
    feed.start(2500ms);
    EXPECT_EQ(feed.nextEpoch(), 3000ms);
    feed.step(2999ms);
    EXPECT_EQ(feed.counters().written, 0U);
    feed.step(4000ms);
    ASSERT_TRUE(deliver(feed, reader));
    EXPECT_EQ(reader.rmcTimes(), (std::vector<std::string>{"030003.00", "030004.00"}));
}

TEST(ReceiverSteps, ThereIsNoEpochWhileStopped)
{
    Feed feed = inSteps(hotStart());
    const Reader reader(feed.path());
    EXPECT_EQ(feed.nextEpoch(), std::nullopt);
    feed.step(10s);
    feed.start();
    EXPECT_TRUE(feed.isStarted());
    EXPECT_EQ(feed.nextEpoch(), 0ms);
    feed.step(0ms);
    EXPECT_EQ(feed.status().fix, FixState::Fix3D);
    feed.stop();
    EXPECT_FALSE(feed.isStarted());
    EXPECT_EQ(feed.nextEpoch(), std::nullopt);
    EXPECT_EQ(feed.status().fix, FixState::None);
    feed.step(20s);
    EXPECT_EQ(feed.counters().unheard, 0U);
    EXPECT_EQ(feed.counters().written, 1U);
}

TEST(ReceiverSteps, WithoutAReaderEpochsAreUnheardAndNobodyIsReady)
{
    Feed feed = inSteps(hotStart());
    feed.start();
    EXPECT_FALSE(feed.hasReader());
    EXPECT_FALSE(feed.isReady());
    feed.step(4000ms);
    EXPECT_EQ(feed.counters().unheard, 5U);
    Reader reader(feed.path());
    EXPECT_TRUE(feed.hasReader());
    EXPECT_TRUE(feed.isReady()) << "nothing is due to this reader yet";
    feed.step(5000ms);
    ASSERT_TRUE(deliver(feed, reader));
    EXPECT_EQ(reader.received(), epochWith({}, 5s));
}

TEST(ReceiverSteps, NothingIsDroppedHoweverMuchAStepMakes)
{
    Feed feed = inSteps(hotStart(), fast());
    Reader reader(feed.path());
    feed.start();
    feed.step(59900ms);  // several times of what the kernel's buffers hold
    EXPECT_FALSE(feed.isReady());
    ASSERT_TRUE(deliver(feed, reader));
    EXPECT_EQ(feed.counters().written, 600U);
    EXPECT_EQ(feed.counters().dropped, 0U);
    expectValid(reader.completeLines());
    const std::vector<std::string> times = reader.rmcTimes();
    ASSERT_EQ(times.size(), 600U);
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
    EXPECT_EQ(times.back(), "030059.90");
}

TEST(ReceiverSteps, ReaderIsReadyWithTheLastByteAndNotBefore)
{
    const std::string content = recording(300, 70) + recording(3, 6000);
    const TemporaryFile file(content);
    Feed feed = inSteps(replayOf(file));
    Reader reader(feed.path());
    feed.start();
    std::size_t due = 0;
    std::size_t early = 0;
    while (const std::optional<milliseconds> next = feed.nextEpoch()) {
        feed.step(*next);
        due = content.find("$GPGGA", due + 1);
        due = std::min(due, content.size());
        while (reader.received().size() < due) {
            early += feed.isReady() ? 1U : 0U;
            ASSERT_TRUE(await([&] { return !reader.take(1).empty(); }));
        }
        ASSERT_TRUE(feed.isReady()) << "after " << due << " bytes";
        ASSERT_TRUE(reader.take().empty());
    }
    EXPECT_EQ(early, 0U);
    EXPECT_EQ(reader.received(), content);
}

TEST(ReceiverSteps, ReaderOnAnotherThreadGetsEveryByteBeforeItCountsAsReady)
{
    for (const std::size_t length : {80U, 1500U, 6000U, 20000U}) {
        const int epochs = length < 1000 ? 3000 : 500;
        const std::string content = recording(epochs, length);
        const TemporaryFile file(content);
        Feed feed = inSteps(replayOf(file));
        ReadingThread reader(feed.path(), {1, 4096, 3, 64, 2500, 700, 65536});
        feed.start();
        std::size_t due = 0;
        std::size_t early = 0;
        while (const std::optional<milliseconds> next = feed.nextEpoch()) {
            feed.step(*next);
            due = std::min(content.find("$GPGGA", due + 1), content.size());
            ASSERT_TRUE(becomesReady(feed)) << "after " << due << " bytes of epochs of " << length;
            early += reader.asked() < due ? 1U : 0U;
        }
        EXPECT_EQ(early, 0U) << "epochs of " << length;
        EXPECT_EQ(reader.finish(), content) << "epochs of " << length;
        EXPECT_EQ(feed.counters().written, static_cast<std::uint64_t>(epochs));
    }
}

TEST(ReceiverSteps, ReaderInSingleBytesGetsEveryByteBeforeItCountsAsReady)
{
    const std::string content = recording(2000, 80);
    const TemporaryFile file(content);
    Feed feed = inSteps(replayOf(file));
    ReadingThread reader(feed.path(), {1});
    feed.start();
    std::size_t due = 0;
    std::size_t early = 0;
    while (const std::optional<milliseconds> next = feed.nextEpoch()) {
        feed.step(*next);
        due = std::min(content.find("$GPGGA", due + 1), content.size());
        ASSERT_TRUE(becomesReady(feed)) << "after " << due << " bytes";
        early += reader.asked() < due ? 1U : 0U;
    }
    EXPECT_EQ(early, 0U);
    EXPECT_EQ(reader.finish(), content);
}

TEST(ReceiverSteps, ReaderByLinesHasTakenAllWhenNoWholeLineIsLeft)
{
    const TemporaryFile file(recording(1, 70) + "half a line");
    Feed feed = inSteps(replayOf(file));
    Reader reader(feed.path());
    termios mode{};
    ASSERT_EQ(::tcgetattr(reader.file(), &mode), 0);
    mode.c_lflag |= tcflag_t(ICANON);
    ASSERT_EQ(::tcsetattr(reader.file(), TCSANOW, &mode), 0);
    feed.start();
    feed.step(0ms);
    EXPECT_FALSE(feed.isReady());
    EXPECT_EQ(reader.take(), recording(1, 70));
    EXPECT_TRUE(feed.isReady());
}

TEST(ReceiverSteps, ReaderThatWantsManyBytesAtOnceIsReadyForMoreWhileThereAreFewer)
{
    const TemporaryFile file(recording(3, 70));
    Feed feed = inSteps(replayOf(file));
    Reader reader(feed.path());
    termios mode{};
    ASSERT_EQ(::tcgetattr(reader.file(), &mode), 0);
    mode.c_cc[VMIN] = 100;  // less than two epochs
    ASSERT_EQ(::tcsetattr(reader.file(), TCSANOW, &mode), 0);
    feed.start();
    feed.step(0ms);
    EXPECT_TRUE(feed.isReady()) << "or both would wait for each other";
    feed.step(1000ms);
    EXPECT_FALSE(feed.isReady());
    ASSERT_TRUE(deliver(feed, reader));
    EXPECT_EQ(reader.received(), recording(2, 70));
}

TEST(ReceiverSteps, ReaderAfterOneThatLeftWithinALineGetsNothingStale)
{
    Feed feed = inSteps(hotStart(), fast());
    feed.start();
    {
        Reader first(feed.path());
        feed.step(9900ms);
        EXPECT_EQ(first.take(10).size(), 10U);
    }
    EXPECT_FALSE(feed.hasReader());
    EXPECT_EQ(feed.counters().written + feed.counters().unheard, 100U);
    Reader second(feed.path());
    EXPECT_TRUE(feed.isReady());
    EXPECT_EQ(second.take(), "");
    feed.step(10s);
    ASSERT_TRUE(deliver(feed, second));
    EXPECT_EQ(second.received(), epochWith(fast(), 10s));
}

TEST(ReceiverSteps, ReaderThatSetAModeOfItsOwnLeavesNoTraceOfIt)
{
    Feed feed = inSteps(hotStart());
    feed.start();
    {
        const Reader first(feed.path());
        termios mode{};
        ASSERT_EQ(::tcgetattr(first.file(), &mode), 0);
        mode.c_lflag |= tcflag_t(ICANON);
        ASSERT_EQ(::tcsetattr(first.file(), TCSANOW, &mode), 0);
        feed.step(0ms);
    }
    EXPECT_FALSE(feed.isReady());
    const Reader second(feed.path());
    termios mode{};
    ASSERT_EQ(::tcgetattr(second.file(), &mode), 0);
    EXPECT_EQ(mode.c_lflag & tcflag_t(ICANON), 0U);
}

TEST(ReceiverSteps, WhatWasMadeBeforeAStopIsStillHandedOver)
{
    Feed feed = inSteps(hotStart(), fast());
    Reader reader(feed.path());
    feed.start();
    feed.step(9900ms);
    feed.stop();
    ASSERT_TRUE(deliver(feed, reader));
    EXPECT_EQ(reader.rmcTimes().size(), 100U);
    feed.start(20s);
    feed.step(20s);
    ASSERT_TRUE(deliver(feed, reader));
    EXPECT_EQ(reader.rmcTimes().back(), "030020.00");
    expectValid(reader.completeLines());
}

TEST(ReceiverSteps, SettingsAndBlockedSystemsHoldFromTheNextEpochOn)
{
    Feed feed = inSteps(hotStart());
    Reader reader(feed.path());
    feed.start();
    feed.step(1000ms);
    EXPECT_GT(feed.status().of(GnssSystem::Glonass).tracked, 0);
    feed.setBlocked(GnssSystem::Glonass, true);
    ReceiverSettings settings = fast();
    settings.galileo = false;
    feed.step(1500ms);
    feed.apply(settings);
    EXPECT_EQ(feed.nextEpoch(), 1500ms) << "those before are not made up";
    feed.step(1500ms);
    EXPECT_EQ(feed.nextEpoch(), 1600ms);
    EXPECT_EQ(feed.status().of(GnssSystem::Glonass).tracked, 0);
    EXPECT_EQ(feed.status().of(GnssSystem::Galileo).inView, 0);
    ASSERT_TRUE(deliver(feed, reader));
    EXPECT_EQ(reader.rmcTimes(), (std::vector<std::string>{"030000.00", "030001.00", "030001.50"}));
}

TEST(ReceiverSteps, SettingsChangedAtAnEpochDoNotRepeatIt)
{
    Feed feed = inSteps(hotStart());
    feed.apply(fast());
    feed.start(1s);
    EXPECT_EQ(feed.nextEpoch(), 1000ms);
    feed.step(1000ms);
    feed.apply({});
    feed.apply(fast());
    EXPECT_EQ(feed.nextEpoch(), 1100ms);
}

TEST(ReceiverSteps, WhatTheReaderSendsNeverFillsTheTerminal)
{
    Feed feed = inSteps(hotStart());
    const Reader reader(feed.path());
    const std::string command(1000, 'x');
    std::size_t sent = 0;
    EXPECT_TRUE(await([&] {
        const ssize_t count = ::write(reader.file(), command.data(), command.size());
        sent += count > 0 ? static_cast<std::size_t>(count) : 0;
        feed.isReady();
        return sent >= 100000;  // several times of what the buffers hold
    })) << "sent "
        << sent;
}

TEST(ReceiverSteps, RecordingArrivesByteForByteAtItsTimesAndEnds)
{
    const std::string content = "# by hand\n" + recording(3, 5000) + "$GPRM";
    const TemporaryFile file(content);
    Feed feed = inSteps(replayOf(file));
    Reader reader(feed.path());
    feed.start(7s);
    EXPECT_EQ(feed.nextEpoch(), 7s);
    feed.step(8s);
    EXPECT_EQ(feed.nextEpoch(), 9s);
    feed.step(9s);
    EXPECT_EQ(feed.nextEpoch(), std::nullopt);
    feed.step(1h);
    ASSERT_TRUE(deliver(feed, reader));
    EXPECT_EQ(reader.received(), content);
    EXPECT_EQ(feed.counters().written, 3U);
}

TEST(ReceiverSteps, AnHourIsTheSameEveryTime)
{
    const std::string one = run({}, 1h);
    EXPECT_EQ(sentences(one, "RMC").size(), 3600U);
    expectValid(linesOf(one));
    EXPECT_TRUE(one == run({}, 1h));
}

TEST(ReceiverSteps, AMinuteOfTenEpochsASecondIsTheSameEveryTime)
{
    ReceiverSettings raw = fast();
    raw.format = OutputFormat::Raw;
    for (const ReceiverSettings& settings : {fast(), raw}) {
        const std::string one = run(settings, 1min);
        expectValid(linesOf(one));
        EXPECT_GT(one.size(), 600000U);
        EXPECT_TRUE(one == run(settings, 1min));
    }
}

TEST(ReceiverSteps, OwnersOnSeveralThreadsDoNotDisturbEachOther)
{
    Feed feed = inSteps(hotStart(), fast());
    ReadingThread reader(feed.path(), {4096});
    feed.start();
    std::vector<std::thread> owners;
    for (int i = 0; i < 3; ++i)
        owners.emplace_back([&feed] {
            while (const std::optional<milliseconds> next = feed.nextEpoch()) {
                if (*next > 10s)
                    break;
                feed.step(*next);
                feed.isReady();
                feed.hasReader();
                feed.status();
            }
        });
    for (std::thread& owner : owners)
        owner.join();
    ASSERT_TRUE(becomesReady(feed));
    feed.stop();
    const std::vector<Fields> all = sentences(reader.finish(), "RMC");
    ASSERT_EQ(all.size(), 101U);
    EXPECT_EQ(all.back()[1], "030010.00");
}

TEST(ReceiverSteps, RealPaceHasNoSteps)
{
    Feed feed(hotStart(), {});
    const Reader reader(feed.path());
    EXPECT_TRUE(feed.hasReader());
    EXPECT_TRUE(feed.isReady());
    feed.step(1h);
    EXPECT_EQ(feed.nextEpoch(), std::nullopt);
    EXPECT_EQ(feed.counters().written, 0U);
}

}  // namespace
