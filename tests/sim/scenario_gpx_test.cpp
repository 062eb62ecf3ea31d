#include "scenario/Gpx.h"
#include "sim/scenario_support.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

using arcsim::parseGpx;
using arcsim::Waypoint;
using std::chrono::milliseconds;

constexpr double kMetresPerDeg = 110574.4;  // of latitude at the equator

std::string gpx(const std::string& content)
{
    return "<?xml version=\"1.0\"?>\n<gpx version=\"1.1\">\n" + content + "\n</gpx>\n";
}

std::string track(const std::string& points)
{
    return gpx("<trk><trkseg>\n" + points + "</trkseg></trk>");
}

/// A point of a track on a line of its own; the first one is on line 4.
std::string point(const std::string& latitude, const std::string& longitude, const std::string& content = "")
{
    return "<trkpt lat=\"" + latitude + "\" lon=\"" + longitude + "\">" + content + "</trkpt>\n";
}

/// On the equator's meridian, at a second of one hour.
std::string at(const std::string& latitude, const std::string& clock)
{
    return point(latitude, "0", "<time>2024-06-12T03:" + clock + "Z</time>");
}

std::vector<Waypoint> routeOf(const std::string& text, double speedMps = 10)
{
    return parseGpx("d.gpx", text, speedMps);
}

std::string gpxErrorOf(const std::string& text)
{
    try {
        parseGpx("d.gpx", text, 10);
    } catch (const arcsim::ScenarioError& error) {
        return error.what();
    }
    return "accepted";
}

TEST(Gpx, JoinsItsTracks)
{
    const auto route = routeOf(gpx("<wpt lat='9' lon='9'/><rte><rtept lat='8' lon='8'/></rte>"
                                   "<trk><name>a</name><trkseg><trkpt lat='1' lon='2'><ele>3.5</ele></trkpt>"
                                   "<trkpt lat='1.5' lon='2'/></trkseg><trkseg><trkpt lat='+2' lon=' -2.25 '/></trkseg>"
                                   "</trk><trk/><trk><trkseg/><trkseg><trkpt lat='-3' lon='1e1'><ele>\n7 </ele></trkpt>"
                                   "</trkseg></trk>"),
                               12.5);
    ASSERT_EQ(route.size(), 4U);
    EXPECT_EQ(route[0].latitudeDeg, 1);
    EXPECT_EQ(route[0].longitudeDeg, 2);
    EXPECT_EQ(route[0].altitudeM, 3.5);
    EXPECT_EQ(route[0].speedMps, 12.5);
    EXPECT_EQ(route[0].wait, milliseconds(0));
    EXPECT_EQ(route[1].altitudeM, 3.5) << "that of the point before";
    EXPECT_EQ(route[2].latitudeDeg, 2);
    EXPECT_EQ(route[2].longitudeDeg, -2.25);
    EXPECT_EQ(route[3].latitudeDeg, -3);
    EXPECT_EQ(route[3].longitudeDeg, 10);
    EXPECT_EQ(route[3].altitudeM, 7);
}

TEST(Gpx, WithoutTracksGivesItsRoutes)
{
    const auto route = routeOf(gpx("<wpt lat='9' lon='9'/><rte><rtept lat='8' lon='8'/><rtept lat='8' lon='7'/></rte>"
                                   "<rte><rtept lat='6' lon='6'/></rte><trk><trkseg/></trk>"));
    ASSERT_EQ(route.size(), 3U);
    EXPECT_EQ(route[1].longitudeDeg, 7);
    EXPECT_EQ(route[2].latitudeDeg, 6);
}

TEST(Gpx, WithoutTracksAndRoutesGivesItsWaypoints)
{
    const auto route = routeOf(gpx("<wpt lat='9' lon='8'><ele>1</ele></wpt><rte/><wpt lat='7' lon='6'/>"));
    ASSERT_EQ(route.size(), 2U);
    EXPECT_EQ(route[0].latitudeDeg, 9);
    EXPECT_EQ(route[1].longitudeDeg, 6);
}

TEST(Gpx, MayHaveOnePoint)
{
    EXPECT_EQ(routeOf(track(at("1", "00:00"))).size(), 1U);
}

TEST(Gpx, WithTimesSaysHowFast)
{
    const auto route = routeOf(track(at("0", "00:00") + at("0.001", "00:10") + at("0.002", "00:12.5")));
    ASSERT_EQ(route.size(), 3U);
    EXPECT_NEAR(route[0].speedMps, kMetresPerDeg * 0.001 / 10, 0.001);
    EXPECT_NEAR(route[1].speedMps, kMetresPerDeg * 0.001 / 2.5, 0.001);
    EXPECT_EQ(route[0].wait, milliseconds(0));
}

TEST(Gpx, WithTimesAcrossTheDateLineTakesTheShortWay)
{
    const auto route = routeOf(track(point("0", "179.999", "<time>2024-06-12T03:00:00Z</time>") +
                                     point("0", "-179.999", "<time>2024-06-12T03:00:10Z</time>")));
    ASSERT_EQ(route.size(), 2U);
    EXPECT_NEAR(route[0].speedMps, 22.264, 0.01);
}

TEST(Gpx, WithSomeTimesIsDrivenAtTheSpeedGiven)
{
    const auto route = routeOf(track(at("0", "00:00") + point("0.001", "0") + at("0.002", "00:00")), 25);
    ASSERT_EQ(route.size(), 3U);
    EXPECT_EQ(route[0].speedMps, 25);
    EXPECT_EQ(route[1].speedMps, 25);
}

TEST(Gpx, TurnsAPauseIntoAWait)
{
    const auto route = routeOf(track(at("0", "00:00") + at("0", "00:30") + at("0", "00:31.250") + at("0.001", "00:41") +
                                     at("0.001", "01:00")));
    ASSERT_EQ(route.size(), 2U);
    EXPECT_EQ(route[0].wait, milliseconds(31250));
    EXPECT_NEAR(route[0].speedMps, kMetresPerDeg * 0.001 / 9.75, 0.001) << "from the end of the pause";
    EXPECT_EQ(route[1].wait, milliseconds(19000));
}

TEST(Gpx, TakesANoiseOfCentimetresForAPause)
{
    const auto route = routeOf(track(at("0", "00:00") + at("0.0000001", "01:00") + at("0.001", "01:10")));
    ASSERT_EQ(route.size(), 2U);
    EXPECT_EQ(route[0].wait, milliseconds(60000));
}

TEST(Gpx, WithoutTimesMergesPointsAtOnePlace)
{
    const auto route = routeOf(track(point("1", "2") + point("1", "2", "<ele>5</ele>") + point("1", "2.1") +
                                     point("1", "2.1") + point("1", "2")));
    ASSERT_EQ(route.size(), 3U);
    EXPECT_EQ(route[1].longitudeDeg, 2.1);
}

TEST(Gpx, TakesTimesWithOffsetsAndFractions)
{
    const auto times = [](const std::string& first, const std::string& second) {
        return routeOf(track(point("0", "0", "<time>" + first + "</time>") +
                             point("0", "0", "<time> " + second + "</time>")))
            .at(0)
            .wait;
    };
    EXPECT_EQ(times("2024-06-12T03:00:00Z", "2024-06-12T05:00:01+02:00"), milliseconds(1000));
    EXPECT_EQ(times("2024-06-12T03:00:00Z", "2024-06-11T23:30:02-03:30"), milliseconds(2000));
    EXPECT_EQ(times("2024-06-12T03:00:00.25", "2024-06-12T03:00:00.2567891"), milliseconds(6));
    EXPECT_EQ(times("2024-02-29T23:59:59.9Z", "2024-03-01T00:00:00Z"), milliseconds(100));
    EXPECT_EQ(times("1999-12-31T23:59:59Z", "2000-01-01T00:00:00Z"), milliseconds(1000));
}

struct RefusedGpx
{
    std::string text;
    const char* error;
};

TEST(Gpx, WithAMistakeIsRefusedByLineAndPoint)
{
    const std::string good = point("1", "2");
    const std::string anHourAgo = at("0", "00:10");
    const RefusedGpx refused[] = {
        {"", "d.gpx:1: no XML: No document element found; accepted: a GPX file"},
        {"<gpx>\n<trk>\n</gpx>", "d.gpx:3: no XML: Start-end tags mismatch; accepted: a GPX file"},
        {"{\"a\": 1}", "d.gpx:1: no XML: No document element found; accepted: a GPX file"},
        {"\n<kml/>", "d.gpx:2: the element kml is not accepted; accepted: a GPX file, which has the element gpx"},
        {"<gpx>\n<trk/></gpx>", "d.gpx:1: no point is in it; accepted: at least one trkpt, rtept or wpt"},
        {track(good + point("89.5", "2")),
         "d.gpx:5: point 2: lat: \"89.5\" is not accepted; accepted: a number from -89 to 89"},
        {track(good + point("1", "-181")),
         "d.gpx:5: point 2: lon: \"-181\" is not accepted; accepted: a number from -180 to 180"},
        {track("<trkpt lon=\"2\"/>"), "d.gpx:4: point 1: lat: \"\" is not accepted; accepted: a number from -89 to 89"},
        {track(point("nan", "2")), "d.gpx:4: point 1: lat: \"nan\" is not accepted; accepted: a number from -89 to 89"},
        {track(point("1,5", "2")), "d.gpx:4: point 1: lat: \"1,5\" is not accepted; accepted: a number from -89 to 89"},
        {track(point("+-1", "2")), "d.gpx:4: point 1: lat: \"+-1\" is not accepted; accepted: a number from -89 to 89"},
        {track(point("1e999", "2")),
         "d.gpx:4: point 1: lat: \"1e999\" is not accepted; accepted: a number from -89 to 89"},
        {track(good + good + point("1", "2", "\n<ele>9001</ele>")),
         "d.gpx:6: point 3: ele: \"9001\" is not accepted; accepted: a number from -500 to 9000"},
        {track(point("1", "2", "<ele/>")),
         "d.gpx:4: point 1: ele: \"\" is not accepted; accepted: a number from -500 to 9000"},
        {track(point("1", "2", "<time>noon\n\xC3\xA4</time>")),
         "d.gpx:4: point 1: time: \"noon\\n\xC3\xA4\" is not accepted; accepted: a time like 2024-06-12T03:00:00Z"},
        {track(point("1", "2", "<time>2024-06-31T03:00:00Z</time>")),
         "d.gpx:4: point 1: time: \"2024-06-31T03:00:00Z\" is not accepted; accepted: a time like "
         "2024-06-12T03:00:00Z"},
        {track(anHourAgo + at("0.001", "00:09")),
         "d.gpx:5: point 2: time: \"2024-06-12T03:00:09Z\" is not accepted; accepted: a time not before that of point "
         "1"},
        {track(anHourAgo + at("0", "00:10") + at("1", "00:20")),
         "d.gpx:6: point 3: way: \"110574 m in 10 s\" is not accepted; accepted: a speed of 0.01 to 300 m/s on the way "
         "from point 2"},
        {track(anHourAgo + at("0.001", "00:10")),
         "d.gpx:5: point 2: way: \"110.574 m in 0 s\" is not accepted; accepted: a speed of 0.01 to 300 m/s on the way "
         "from point 1"},
        {track(at("0", "00:00") + at("0.00001", "50:00")),
         "d.gpx:5: point 2: way: \"1.10574 m in 3000 s\" is not accepted; accepted: a speed of 0.01 to 300 m/s on the "
         "way from point 1"},
    };
    for (const auto& [text, error] : refused)
        EXPECT_EQ(gpxErrorOf(text), error);
}

TEST(Gpx, HasAtMost100000Points)
{
    std::string points;
    for (int i = 0; i < 100000; ++i)
        points += point("1", i % 2 == 0 ? "2" : "3");
    EXPECT_EQ(routeOf(track(points)).size(), 100000U);
    EXPECT_EQ(gpxErrorOf(track(points + point("1", "2"))),
              "d.gpx:100004: more points are not accepted; accepted: at most 100000");
}

class GpxFile : public testing::Test
{
protected:
    GpxFile() { std::filesystem::create_directories(m_folder); }
    ~GpxFile() override { std::filesystem::remove_all(m_folder); }

    void write(const std::string& text) { std::ofstream(m_folder / "d.gpx") << text; }
    std::vector<Waypoint> routeOfScenario(const std::string& text)
    {
        return arcsim::parseScenario((m_folder / "s.json").string(), text).receiver.route;
    }

    const std::filesystem::path m_folder =
        std::filesystem::path(testing::TempDir()) / ("gpx." + std::to_string(getpid()));
};

TEST_F(GpxFile, IsFoundBesideTheScenario)
{
    write(track(point("1", "2") + point("1", "3")));
    const auto route = routeOfScenario(R"({"route": {"gpx": "d.gpx"}})");
    ASSERT_EQ(route.size(), 2U);
    EXPECT_EQ(route[0].speedMps, 10);
    EXPECT_EQ(routeOfScenario(R"({"route": {"gpx": "d.gpx", "speedMps": 0.1}})")[0].speedMps, 0.1);
    EXPECT_EQ(routeOfScenario(R"({"route": {"gpx": "d.gpx", "speedMps": 300}})")[0].speedMps, 300);
    EXPECT_EQ(routeOfScenario("{\"route\": {\"gpx\": \"" + (m_folder / "d.gpx").string() + "\"}}").size(), 2U);
}

TEST_F(GpxFile, IsDrivenAtASpeedThatIsAccepted)
{
    for (const char* const speed : {"0.09", "300.5"})
        EXPECT_EQ(
            scenario_test::errorOf("{\"route\": {\"gpx\": \"d.gpx\",\n\"speedMps\": " + std::string(speed) + "}}"),
            "s.json:2: route.speedMps: " + std::string(speed) + " is not accepted; accepted: a number from 0.1 to 300");
}

TEST_F(GpxFile, WithAMistakeIsNamed)
{
    write(track(point("1", "x")));
    try {
        routeOfScenario(R"({"route": {"gpx": "d.gpx"}})");
        FAIL();
    } catch (const arcsim::ScenarioError& error) {
        EXPECT_EQ(error.what(), (m_folder / "d.gpx").string() +
                                    ":4: point 1: lon: \"x\" is not accepted; accepted: a number from -180 to 180");
    }
}

TEST_F(GpxFile, IsNoLargerThanAScenario)
{
    write(std::string((16U << 20U) + 1, ' '));
    try {
        routeOfScenario(R"({"route": {"gpx": "d.gpx"}})");
        FAIL();
    } catch (const arcsim::ScenarioError& error) {
        EXPECT_EQ(error.what(),
                  (m_folder / "d.gpx").string() + ": a larger file is not accepted; accepted: at most 16777216 bytes");
    }
}

}  // namespace
