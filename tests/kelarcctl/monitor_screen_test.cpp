// The monitor's screen as a whole, and the lines that it prints instead.

#include "kelarcctl/monitor/EpochJson.h"
#include "kelarcctl/monitor/Screen.h"
#include "monitor_model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelarcctl {
namespace {

using nmea::System;
using testing::HasSubstr;
using testing::Not;

TEST(Screen, SaysWhatSizeIsNeeded)
{
    EXPECT_EQ(textOf(drawScreen(Model{}, View{}, asciiGlyphs(), 2, 79)), "The monitor needs 80x24; this is 79x2.\n\n");
    EXPECT_THAT(textOf(drawScreen(Model{}, View{}, asciiGlyphs(), 23, 80)), HasSubstr("this is 80x23."));
    EXPECT_THAT(textOf(drawScreen(Model{}, View{}, asciiGlyphs(), 24, 80)), Not(HasSubstr("needs")));
    for (int rows = 0; rows < 4; ++rows)
        drawScreen(Model{}, View{}, asciiGlyphs(), rows, 3);
}

TEST(Screen, TellsTheStateOfTheModem)
{
    Model model;
    const auto first = [&] { return drawScreen(model, View{}, asciiGlyphs(), 24, 80).line(0); };
    EXPECT_THAT(first(), HasSubstr("opening the modem"));
    model.link = Link::noDaemon;
    model.linkSinceMs = 1000;
    model.nowMs = 13'000;
    EXPECT_THAT(first(), HasSubstr("NO DAEMON for 12 s (31)"));
    model.link = Link::open;
    EXPECT_THAT(first(), HasSubstr("output is off"));
    model.output = RawOutput::starting;
    EXPECT_THAT(first(), HasSubstr("output is starting"));
    model.output = RawOutput::running;
    model.device = "/dev/pts/" + std::string(100, '5');
    model.add(epochWith({}));
    EXPECT_EQ(first(), "KelArc monitor  output on /dev/pts/5555555555555555555.. 2024-06-12 03:00:14 UTC");
    View paused;
    paused.isPaused = true;
    EXPECT_EQ(drawScreen(model, paused, asciiGlyphs(), 24, 80).line(0),
              "KelArc monitor  output on /dev/pts/55555555555.. PAUSED  2024-06-12 03:00:14 UTC");
}

TEST(Screen, ShowsTheFix)
{
    Model model;
    const auto second = [&] { return drawScreen(model, View{}, asciiGlyphs(), 24, 80).line(1); };
    EXPECT_EQ(second(), "no fix          -           -       - m     - km/h   - deg  used 0/0");
    nmea::Epoch epoch = fixAt(-48.137406, -11.576386);
    epoch.altitudeM = 518.4;
    epoch.speedKmh = 28.8;
    epoch.courseDeg = 67.2;
    epoch.satellites[0] = {4, 10};
    epoch.satellites[2] = {3, 7};
    model.link = Link::open;
    model.output = RawOutput::running;
    model.add(epoch);
    EXPECT_EQ(second(), "3D fix 48.137406S  11.576386W   518.4 m  28.8 km/h  67 deg  used 7/17");
}

TEST(Screen, ShowsAnOldFixAsOld)
{
    Model model;
    model.link = Link::open;
    model.output = RawOutput::running;
    model.nowMs = 500;
    nmea::Epoch epoch = epochWith({satellite(System::gps, 7, 45, 123, 42)});
    epoch.fix = nmea::Fix::threeD;
    epoch.latitudeDeg = 48.137406;
    epoch.longitudeDeg = 11.576386;
    model.add(epoch);
    View view;
    view.panel = Panel::overview;
    int rows = 24;
    int columns = 80;
    const auto screen = [&] { return drawScreen(model, view, asciiGlyphs(), rows, columns); };
    const auto expectOld = [&](const char* age) {
        EXPECT_EQ(screen().line(1), std::string("3D fix 48.137406N  11.576386E       - m     - km/h   - deg  ") + age);
        EXPECT_EQ(styleOf(screen(), age), Style::warning);
        for (const char* const grey : {"3D fix", "48.137406N", "2024-06-12", "G07 45 123", "GPS  1/1"})
            EXPECT_EQ(styleOf(screen(), grey), Style::dim) << grey;
    };
    model.nowMs = 3499;
    EXPECT_EQ(screen().line(1), "3D fix 48.137406N  11.576386E       - m     - km/h   - deg  used 1/1");
    EXPECT_EQ(styleOf(screen(), "3D fix"), Style::good);
    EXPECT_EQ(styleOf(screen(), "G07 45 123"), Style::good);
    model.nowMs = 3500;  // no more sentences
    expectOld("3 s ago");
    model.nowMs = 700;
    model.output = RawOutput::off;  // x
    expectOld("0 s ago");
    model.output = RawOutput::running;
    model.link = Link::noDaemon;
    model.nowMs = 181'000;
    expectOld("3 min ago");
    rows = 40;
    columns = 120;
    view.panel = Panel::all;
    expectOld("3 min ago");
    EXPECT_EQ(styleOf(screen(), "C/N0  now best"), Style::dim);
    view.panel = Panel::signal;
    EXPECT_EQ(styleOf(screen(), "C/N0  now best"), Style::dim);
    EXPECT_EQ(styleOf(screen(), "NO DAEMON"), Style::bad);
    model.link = Link::open;
    model.add(epoch);
    EXPECT_EQ(styleOf(screen(), "3D fix"), Style::good) << "a new epoch is a new one";
}

TEST(Screen, TellsTheMostUrgentNews)
{
    Model model;
    model.link = Link::open;
    const auto third = [&] { return drawScreen(model, View{}, asciiGlyphs(), 24, 80).line(2); };
    EXPECT_EQ(third(), "");
    model.setNotice(Style::good, "sbas is now on");
    EXPECT_EQ(third(), "sbas is now on");
    model.waiting = {{1, "reading sbas", 0}};
    model.nowMs = 1999;
    EXPECT_EQ(third(), "sbas is now on");
    model.nowMs = 3000;
    EXPECT_EQ(third(), "no answer for 3 s: reading sbas");
    model.runningTask = "kelarc/KelArc.367: Get X";
    model.attempts.add({14, "Get X", 0, "Text", 21});
    EXPECT_EQ(third(), "no answer for 3 s: reading sbas, attempt 2 (21)");
    model.waiting.clear();
    model.nowMs = 10'000;
    model.output = RawOutput::running;
    model.lastSentenceMs = 4000;
    model.garbage = 3;
    model.wrongChecksums = 2;
    EXPECT_EQ(third(), "no sentence for 6 s                                   bad checksums 2  garbage 3");
}

TEST(Screen, HasTheKeysInItsFooter)
{
    View view;
    EXPECT_EQ(drawScreen(Model{}, view, asciiGlyphs(), 24, 80).line(23),
              "1-6 Tab panel  p pause  s setting  g start  x stop  r read  h help  q quit");
    view.mode = View::Mode::setting;
    EXPECT_EQ(drawScreen(Model{}, view, asciiGlyphs(), 24, 80).line(23),
              "Up/Down choose a setting   Enter change it   Esc leave");
}

TEST(Screen, ShowsSeveralPanelsWhereThereIsRoom)
{
    const std::string text = textOf(drawScreen(Model{}, View{}, asciiGlyphs(), 40, 120));
    for (const char* const title :
         {"-- Satellites --", "-- Signal --", "-- Modem --", "-- Tasks and log --", "-- Events --", " 0 All "})
        EXPECT_THAT(text, HasSubstr(title));
    EXPECT_THAT(textOf(drawScreen(Model{}, View{}, asciiGlyphs(), 39, 120)), Not(HasSubstr(" 0 All ")));
}

TEST(EpochJson, SaysNullForWhatIsNotKnown)
{
    Model model;
    model.settings = {{"system glonass", "", "", "", "off"}};
    model.add(epochWith({satellite(System::gps, 7, 45, 123, 42)}));
    const Json json = epochJson(*model.epoch, model);
    EXPECT_EQ(json["type"], "epoch");
    EXPECT_EQ(json["receiverUtc"], "2024-06-12T03:00:14.000Z");
    EXPECT_EQ(json["fix"], "none");
    EXPECT_TRUE(json["latitudeDeg"].is_null());
    EXPECT_EQ(json["systems"]["gps"].dump(), R"({"used":1,"inView":1,"tracked":1,"off":false,"lost":false})");
    EXPECT_EQ(json["systems"]["glonass"].dump(), R"({"used":0,"inView":0,"tracked":0,"off":true,"lost":false})");
    EXPECT_EQ(json["satellites"].dump(),
              R"([{"system":"gps","number":7,"elevationDeg":45.0,"azimuthDeg":123.0,"carrierDbHz":42.0,"used":true}])");
}

}  // namespace
}  // namespace kelarcctl
