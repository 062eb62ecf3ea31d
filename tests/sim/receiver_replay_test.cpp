// Recordings: epochs, pace, errors. The recordings are made here.

#include "receiver/Feed.h"
#include "receiver/Replay.h"

#include "sim/receiver_reader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace arcsim;
using namespace receiver_test;
using namespace std::chrono_literals;

std::string framed(const std::string& body)
{
    int sum = 0;
    for (const char character : body)
        sum ^= character;
    char end[8];
    std::snprintf(end, sizeof end, "*%02X\r\n", static_cast<unsigned>(sum));
    return '$' + body + end;
}

std::string gga(const std::string& time)
{
    return framed("GPGGA," + time + ",4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
}
std::string rmc(const std::string& time)
{
    return framed("GPRMC," + time + ",A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W");
}
std::string gsv()
{
    return framed("GPGSV,1,1,02,05,40,083,46,17,50,120,");
}
std::string gll(const std::string& time)
{
    return framed("GPGLL,4807.038,N,01131.000,E," + time + ",A");
}

struct Played
{
    std::vector<std::string> epochs;
    std::vector<long> timesMs;
};

Played play(Replay& replay, std::size_t most = 1000)
{
    Played played;
    std::chrono::milliseconds last(-1);
    while (played.epochs.size() < most) {
        const auto next = replay.next({}, last);
        if (!next)
            break;
        last = *next;
        played.timesMs.push_back(static_cast<long>(last.count()));
        played.epochs.push_back(replay.take({}, {}, last).bytes);
    }
    return played;
}

Played playText(const std::string& content, double speed = 1)
{
    const TemporaryFile file(content);
    Replay replay(file.path(), speed, false);
    return play(replay);
}

using Epochs = std::vector<std::string>;
using Times = std::vector<long>;

TEST(Replay, EpochBeginsWhereTheTimeChanges)
{
    const std::string one = rmc("120000.00") + gga("120000.00") + gsv() + gll("120000.00");
    const std::string two = rmc("120000.50") + gga("120000.50") + gsv() + gll("120000.50");
    const std::string three = rmc("120002.00") + gga("120002.00");
    const Played played = playText(one + two + three);
    EXPECT_EQ(played.epochs, (Epochs{one, two, three}));
    EXPECT_EQ(played.timesMs, (Times{0, 500, 2000}));
}

TEST(Replay, SentencesWithoutTimeAheadOfTheFirstTimeBelongToTheSameEpoch)
{
    const std::string one = gsv() + gsv() + gga("120000");
    const std::string two = gsv() + gsv() + gga("120001");
    const Played played = playText(one + two);
    EXPECT_EQ(played.epochs, (Epochs{one, two}));
    EXPECT_EQ(played.timesMs, (Times{0, 1000}));
}

TEST(Replay, EpochsBeforeTheFirstTimeAreASecondApart)
{
    const std::string cold = gga("") + gsv();
    const std::string first = gga("120000") + gsv();
    const std::string second = gga("120000.2") + gsv();
    const Played played = playText(cold + cold + first + second);
    EXPECT_EQ(played.epochs, (Epochs{cold, cold, first, second}));
    EXPECT_EQ(played.timesMs, (Times{0, 1000, 2000, 2200}));
}

TEST(Replay, RecordingWithoutAnyTimeIsPlayedOneEpochASecond)
{
    const std::string cold = gga("") + gsv();
    const Played played = playText(cold + cold + cold);
    EXPECT_EQ(played.epochs, (Epochs{cold, cold, cold}));
    EXPECT_EQ(played.timesMs, (Times{0, 1000, 2000}));
}

TEST(Replay, MidnightIsASecondLikeAnyOther)
{
    EXPECT_EQ(playText(gga("235959") + gga("000000")).timesMs, (Times{0, 1000}));
}

TEST(Replay, TimeThatJumpsBackCountsAsASecond)
{
    EXPECT_EQ(playText(gga("120005") + gga("120000") + gga("120002")).timesMs, (Times{0, 1000, 3000}));
}

TEST(Replay, SpeedShortensThePauses)
{
    EXPECT_EQ(playText(gga("120000") + gga("120001") + gga("120003"), 4).timesMs, (Times{0, 250, 750}));
}

TEST(Replay, BytesThatAreNoSentenceAreKept)
{
    const std::string content = "# made by hand\n" + gga("120000") +
                                std::string("\0\xFF*garbage\r\n$GPGGA,120007,broken*00\n", 36) + gga("120001") +
                                "$GPRM";
    const Played played = playText(content);
    ASSERT_EQ(played.epochs.size(), 2U);
    EXPECT_EQ(played.epochs[0] + played.epochs[1], content);
    EXPECT_EQ(played.epochs[1], gga("120001") + "$GPRM");
}

TEST(Replay, FindsEpochsWhateverTheLinesEndInAndBehindBinaryBytes)
{
    const auto bare = [](std::string sentence) { return sentence.substr(0, sentence.size() - 2); };
    for (const char* end : {"\n", "\r", "\r\r\n", "\xB5\x62\x01\xFF", ""}) {
        const std::string one = bare(rmc("120000")) + end + bare(gga("120000")) + end;
        const std::string two = bare(rmc("120001")) + end + bare(gga("120001")) + end;
        const Played played = playText(one + two);
        EXPECT_EQ(played.epochs, (Epochs{one, two})) << ::testing::PrintToString(end);
    }
}

TEST(Replay, SentenceThatAnotherOneBreaksIntoBeginsNoEpoch)
{
    const std::string one = gga("120000") + "$GPGGA,120007,4807";
    const std::string two = gga("120001");
    EXPECT_EQ(playText(one + two).epochs, (Epochs{one, two}));
}

TEST(Replay, StatusIsReadFromGnsAndGllToo)
{
    const TemporaryFile file(framed("GNGNS,120000,4807.038,N,01131.000,E,AA,13,0.9,255.7,40.0,,") + gll("120001"));
    Replay replay(file.path(), 1, false);
    const ReceiverStatus first = replay.take({}, {}, 0ms).status;
    EXPECT_EQ(first.fix, FixState::Fix3D);
    EXPECT_DOUBLE_EQ(first.altitudeM, 255.7);
    const ReceiverStatus second = replay.take({}, {}, 1s).status;
    EXPECT_EQ(second.fix, FixState::Fix2D);
    EXPECT_NEAR(second.latitudeDeg, 48.1173, 1e-9);
    EXPECT_EQ(second.altitudeM, 0);
}

TEST(Replay, EndsWithoutLoopAndStartsAgainASecondLaterWithLoop)
{
    const TemporaryFile file(gga("120000") + gga("120001"));
    Replay once(file.path(), 1, false);
    EXPECT_EQ(play(once).epochs.size(), 2U);
    EXPECT_FALSE(once.next({}, 1000ms));
    Replay loop(file.path(), 1, true);
    EXPECT_EQ(play(loop, 5).timesMs, (Times{0, 1000, 2000, 3000, 4000}));
}

TEST(Replay, StatusIsReadFromTheSentences)
{
    const std::string epoch = rmc("120000") + gga("120000") + framed("GNGSA,A,3,05,,,,,,,,,,,,1.5,0.9,1.2,1") +
                              framed("GNGSA,A,3,70,71,,,,,,,,,,,1.5,0.9,1.2,2") +
                              framed("GPGSV,1,1,03,05,40,083,46,17,50,120,,40,30,100,36,1") +
                              framed("GPGSV,1,1,02,05,40,083,40,17,50,120,,6") +
                              framed("GLGSV,1,1,02,70,40,083,30,71,50,120,34,1");
    const TemporaryFile file(epoch + gga("120001"));
    Replay replay(file.path(), 1, false);
    const ReceiverStatus status = replay.take({}, {}, 0ms).status;
    EXPECT_EQ(status.fix, FixState::Fix3D);
    EXPECT_EQ(status.utc, std::chrono::system_clock::time_point(24h * 8847 + 12h));  // 1994-03-23
    EXPECT_NEAR(status.latitudeDeg, 48.1173, 1e-9);
    EXPECT_NEAR(status.longitudeDeg, 11.516667, 1e-6);
    EXPECT_DOUBLE_EQ(status.altitudeM, 545.4);
    EXPECT_NEAR(status.speedMps, 11.5236, 1e-4);  // 22.4 knots
    EXPECT_DOUBLE_EQ(status.courseDeg, 84.4);
    EXPECT_EQ(status.of(GnssSystem::Gps).inView, 2);
    EXPECT_EQ(status.of(GnssSystem::Gps).tracked, 1);
    EXPECT_EQ(status.of(GnssSystem::Gps).used, 1);
    EXPECT_DOUBLE_EQ(status.of(GnssSystem::Gps).meanCarrierDbHz, 46);  // the better of two signals
    EXPECT_EQ(status.of(GnssSystem::Sbas).tracked, 1);
    EXPECT_EQ(status.of(GnssSystem::Glonass).tracked, 2);
    EXPECT_EQ(status.of(GnssSystem::Glonass).used, 2);
    EXPECT_DOUBLE_EQ(status.of(GnssSystem::Glonass).meanCarrierDbHz, 32);
    EXPECT_EQ(replay.take({}, {}, 1s).status.of(GnssSystem::Glonass).tracked, 2) << "an epoch without GSV";
}

TEST(Replay, StatusWithoutAFixHasNoPosition)
{
    const TemporaryFile file(framed("GPRMC,120000,V,,,,,,,230394,,") + framed("GPGGA,120000,,,,,0,00,99.9,,,,,,"));
    Replay replay(file.path(), 1, false);
    const ReceiverStatus status = replay.take({}, {}, 0ms).status;
    EXPECT_EQ(status.fix, FixState::None);
    EXPECT_EQ(status.latitudeDeg, 0);
}

std::string messageOf(const std::string& file, double speed = 1)
{
    try {
        const Replay replay(file, speed, false);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "accepted";
}

TEST(Replay, MissingFileIsNamed)
{
    EXPECT_EQ(
        messageOf("/nonexistent/drive.nmea"),
        "/nonexistent/drive.nmea: cannot be read: No such file or directory; accepted: the name of a recording of "
        "NMEA 0183 sentences");
}

TEST(Replay, FolderPipeOrDeviceIsNoRecording)
{
    const std::string accepted = "; accepted: the name of a recording of NMEA 0183 sentences";
    EXPECT_EQ(messageOf("/"), "/: cannot be read: Is a directory" + accepted);
    EXPECT_EQ(messageOf("/dev/zero"), "/dev/zero: cannot be read: Is no regular file" + accepted);
    const TemporaryFile file("");
    const std::string pipe = file.path() + ".pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(messageOf(pipe), pipe + ": cannot be read: Is no regular file" + accepted);
    ::unlink(pipe.c_str());
}

TEST(Replay, FileWithoutSentencesIsRefusedWithWhatIsAccepted)
{
    for (const char* content : {"", "hello\r\n", "$GPGGA,120000*00\r\n"}) {
        const TemporaryFile file(content);
        EXPECT_EQ(messageOf(file.path()), "recording '" + file.path() +
                                              "': holds no NMEA 0183 sentence; accepted are text files with lines "
                                              "such as $GPGGA,...*hh whose checksum is correct");
    }
}

TEST(Replay, SpeedThatIsNotAboveZeroIsRefused)
{
    const TemporaryFile file(gga("120000"));
    EXPECT_NE(messageOf(file.path(), 0).find("replay speed 0.000 is not accepted"), std::string::npos);
    EXPECT_NE(messageOf(file.path(), -2).find("replay speed -2.000 is not accepted"), std::string::npos);
    EXPECT_EQ(messageOf(file.path(), 0.5), "accepted");
}

TEST(Replay, FeedReplaysByteForByteAtItsPaceAndThenFallsSilent)
{
    std::string content;
    for (int i = 0; i < 6; ++i)
        content += rmc("12000" + std::to_string(i)) + gsv() + "noise\n";
    const TemporaryFile file(content);
    ReceiverScenario scenario;
    scenario.replayFile = file.path();
    scenario.replaySpeed = 10;
    Feed feed(scenario, {});
    const int reader = ::open(feed.path().c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    const auto begin = std::chrono::steady_clock::now();
    feed.start();
    std::string received;
    EXPECT_TRUE(await([&] {
        char buffer[4096];
        const ssize_t count = ::read(reader, buffer, sizeof buffer);
        received.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
        return received.size() >= content.size();
    }));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 500ms);
    EXPECT_EQ(received, content);
    EXPECT_EQ(feed.counters().written, 6U);
    EXPECT_EQ(feed.status().of(GnssSystem::Gps).tracked, 1);
    feed.stop();
    ::close(reader);
}

TEST(Replay, FeedPlaysFromTheBeginningAtEveryStart)
{
    const TemporaryFile file(gga("120000"));
    ReceiverScenario scenario;
    scenario.replayFile = file.path();
    scenario.replayWaitsForReader = false;
    Feed feed(scenario, {});
    for (std::uint64_t start = 1; start <= 3; ++start) {
        feed.start();
        EXPECT_TRUE(await([&] { return feed.counters().unheard == start; }));
        feed.stop();
    }
}

std::string secondsOfRecording(int count)
{
    std::string content;
    for (int i = 0; i < count; ++i)
        content += rmc("12000" + std::to_string(i)) + gsv();
    return content;
}

TEST(Replay, FeedWaitsForAReaderAndLosesNothing)
{
    const std::string content = secondsOfRecording(6);
    const TemporaryFile file(content);
    ReceiverScenario scenario;
    scenario.replayFile = file.path();
    scenario.replaySpeed = 100;
    Feed feed(scenario, {});
    for (std::uint64_t start = 1; start <= 2; ++start) {
        feed.start();
        const auto later = std::chrono::steady_clock::now() + 120ms;  // when all of it would have been lost
        ASSERT_TRUE(await([&] { return std::chrono::steady_clock::now() > later; }));
        EXPECT_EQ(feed.counters().unheard, 0U);
        EXPECT_EQ(feed.status().of(GnssSystem::Gps).inView, 0);
        Reader reader(feed.path());
        ASSERT_TRUE(await([&] {
            reader.take();
            return reader.received().size() >= content.size();
        }));
        EXPECT_EQ(reader.received(), content);
        feed.stop();
        EXPECT_EQ(feed.counters().written, 6 * start);
    }
    EXPECT_EQ(feed.counters().unheard, 0U);
}

TEST(Replay, FeedThatWaitsForAReaderStopsAtOnce)
{
    const TemporaryFile file(gga("120000"));
    ReceiverScenario scenario;
    scenario.replayFile = file.path();
    Feed feed(scenario, {});
    feed.start();
    feed.stop();
    EXPECT_EQ(feed.counters().unheard, 0U);
}

TEST(Replay, FeedGoesOnWithoutTheReaderThatItHasBegunFor)
{
    const TemporaryFile file(secondsOfRecording(4));
    ReceiverScenario scenario;
    scenario.replayFile = file.path();
    scenario.replaySpeed = 10;
    Feed feed(scenario, {});
    feed.start();
    {
        Reader reader(feed.path());
        ASSERT_TRUE(await([&] { return !reader.take().empty(); }));
    }
    EXPECT_TRUE(await([&] { return feed.counters().written + feed.counters().unheard == 4; }));
    EXPECT_GE(feed.counters().written, 1U);
}

class ReplayInSteps : public ::testing::Test
{
protected:
    ReplayInSteps() { m_scenario.replayFile = m_file.path(); }

    /// Everything that is handed over now.
    static std::string received(Feed& feed, Reader& reader)
    {
        const std::size_t before = reader.received().size();
        EXPECT_TRUE(await([&] {
            reader.take();
            return feed.isReady();
        }));
        return reader.received().substr(before);
    }

    const TemporaryFile m_file{secondsOfRecording(3)};
    ReceiverScenario m_scenario;
};

TEST_F(ReplayInSteps, BeginsWithTheStartWhenAReaderIsThere)
{
    Feed feed(m_scenario, {}, Feed::Pace::steps);
    Reader reader(feed.path());
    feed.start(5s);
    EXPECT_EQ(feed.nextEpoch(), 5s);
    feed.step(6s);
    EXPECT_EQ(received(feed, reader), secondsOfRecording(2));
    EXPECT_EQ(feed.nextEpoch(), 7s);
}

TEST_F(ReplayInSteps, HasNoNextEpochBeforeThereIsAReader)
{
    Feed feed(m_scenario, {}, Feed::Pace::steps);
    feed.start(5s);
    EXPECT_EQ(feed.nextEpoch(), std::nullopt);
    feed.step(60s);
    EXPECT_EQ(feed.counters().unheard, 0U);
    Reader reader(feed.path());
    EXPECT_EQ(feed.nextEpoch(), 60s);
    feed.step(59s);
    EXPECT_EQ(received(feed, reader), "");
    feed.step(60s);
    EXPECT_EQ(received(feed, reader), secondsOfRecording(1));
    feed.step(62s);
    received(feed, reader);
    EXPECT_EQ(reader.received(), secondsOfRecording(3));
    EXPECT_EQ(feed.nextEpoch(), std::nullopt);
}

TEST_F(ReplayInSteps, BeginsAtTheStepThatFindsTheReader)
{
    Feed feed(m_scenario, {}, Feed::Pace::steps);
    feed.start();
    feed.step(10s);
    Reader reader(feed.path());
    feed.step(60s);
    EXPECT_EQ(received(feed, reader), secondsOfRecording(1));
    EXPECT_EQ(feed.nextEpoch(), 61s);
}

TEST_F(ReplayInSteps, BeginsWhereTimeWasWhenTheReaderWasFound)
{
    Feed feed(m_scenario, {}, Feed::Pace::steps);
    feed.start();
    feed.step(10s);
    Reader reader(feed.path());
    EXPECT_TRUE(feed.isReady());
    feed.step(11s);
    EXPECT_EQ(received(feed, reader), secondsOfRecording(2));
    EXPECT_EQ(feed.nextEpoch(), 12s);
}

TEST_F(ReplayInSteps, WaitsOnWhenTheReaderGoesBeforeTheFirstEpoch)
{
    Feed feed(m_scenario, {}, Feed::Pace::steps);
    {
        const Reader first(feed.path());
        feed.start();
        EXPECT_EQ(feed.nextEpoch(), 0s);
    }
    EXPECT_EQ(feed.nextEpoch(), std::nullopt);
    feed.step(10s);
    EXPECT_EQ(feed.counters().unheard, 0U);
    Reader reader(feed.path());
    feed.step(20s);
    EXPECT_EQ(received(feed, reader), secondsOfRecording(1));
}

TEST_F(ReplayInSteps, BeginsWithTheEngineWhenItIsNotToWait)
{
    m_scenario.replayWaitsForReader = false;
    m_scenario.replayLoop = true;
    Feed feed(m_scenario, {}, Feed::Pace::steps);
    feed.start(5s);
    EXPECT_EQ(feed.nextEpoch(), 5s);
    feed.step(6s);
    EXPECT_EQ(feed.counters().unheard, 2U);
    Reader reader(feed.path());
    feed.step(8s);
    EXPECT_EQ(received(feed, reader),
              secondsOfRecording(3).substr(secondsOfRecording(2).size()) + secondsOfRecording(1));
}

TEST_F(ReplayInSteps, HeedsNothingThatIsSaidOfSatellites)
{
    m_scenario.jamming = {{0s, 1h, {true, true, true, true, true, true}}};
    m_scenario.noFix = {{0s, 1h}};
    m_scenario.systems.fill(false);
    Feed feed(m_scenario, {}, Feed::Pace::steps);
    Reader reader(feed.path());
    feed.setNoFix(true);
    feed.setBlocked(GnssSystem::Gps, true);
    feed.start();
    feed.step(1s);
    EXPECT_EQ(received(feed, reader), secondsOfRecording(2));
    EXPECT_EQ(feed.status().fix, FixState::Fix2D);
    EXPECT_EQ(feed.status().of(GnssSystem::Gps).tracked, 1);
}

TEST(Replay, FeedRefusesAMissingRecordingAtOnce)
{
    ReceiverScenario scenario;
    scenario.replayFile = "/nonexistent/drive.nmea";
    EXPECT_THROW(Feed(scenario, {}), std::runtime_error);
}

}  // namespace
