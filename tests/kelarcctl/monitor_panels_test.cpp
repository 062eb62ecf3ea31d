// What the monitor draws into its panels, without a terminal.

#include "kelarcctl/monitor/Panels.h"
#include "monitor_model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelarcctl {
namespace {

using nmea::System;
using testing::HasSubstr;

const Glyphs& ascii = asciiGlyphs();

TEST(Canvas, CutsWhatIsOutsideAndShowsForeignBytesAsQuestionMarks)
{
    Canvas canvas(2, 5);
    canvas.text(0, 3, "abc");
    canvas.text(1, -1, "x\xc3\xa4\x1b y");
    canvas.text(2, 0, "no row");
    EXPECT_EQ(textOf(canvas), "   ab\n??? y\n");
}

TEST(Canvas, WritesUtf8)
{
    Canvas canvas(1, 3);
    canvas.put(0, 0, U'\u00b7');
    canvas.put(0, 1, U'\u2588');
    EXPECT_EQ(canvas.line(0), "\xc2\xb7\xe2\x96\x88");
}

TEST(Glyphs, ShowLittleAsSomething)
{
    EXPECT_EQ(ascii.level(0), U' ');
    EXPECT_EQ(ascii.level(0.001), U'.');
    EXPECT_EQ(ascii.level(1), U'#');
    EXPECT_EQ(ascii.level(2), U'#');
    EXPECT_EQ(unicodeGlyphs().level(0.5), U'\u2584');
}

TEST(History, HasAColumnForFiveEpochs)
{
    History history;
    EXPECT_TRUE(history.last(10).empty());
    for (int i = 0; i < 5; ++i)
        history.add(40);
    history.add(0);
    history.add(20);
    EXPECT_EQ(history.last(10), (std::vector<double>{40, 10}));
    EXPECT_EQ(history.last(1), (std::vector<double>{10}));
    EXPECT_EQ(history.most(), 40);
}

TEST(Satellites, AreListedWithElevationAzimuthAndCarrier)
{
    Model model;
    model.add(epochWith({satellite(System::gps, 7, 45, 123, 42), satellite(System::gps, 12, 5, 7, 30, false),
                         satellite(System::galileo, 3, 60, 300, 0)}));
    EXPECT_EQ(textOf(satelliteList(model, ascii, 9, 40)), "GPS  1/2  36.0\n"
                                                          "G07 45 123 42################\n"
                                                          "G12  5   7 30##########\n"
                                                          "GLO  0/0     -\n"
                                                          "GAL  0/1     -\n"
                                                          "E03 60 300 --\n"
                                                          "BDS  0/0     -\n"
                                                          "QZS  0/0     -\n"
                                                          "SBA  0/0     -\n");
}

TEST(Satellites, GoOnInTheNextColumnAndSayWhenThereIsNoRoom)
{
    Model model;
    model.add(epochWith({satellite(System::gps, 7, 45, 123, 42), satellite(System::gps, 12, 5, 7, 30)}));
    EXPECT_EQ(textOf(satelliteList(model, ascii, 4, 30)), "GPS  2/2  36.0 GAL  0/0     -\n"
                                                          "G07 45 123 42* BDS  0/0     -\n"
                                                          "G12  5   7 30= QZS  0/0     -\n"
                                                          "GLO  0/0     - SBA  0/0     -\n");
    EXPECT_EQ(textOf(satelliteList(model, ascii, 3, 30)), "GPS  2/2  36.0 GLO  0/0     -\n"
                                                          "G07 45 123 42* GAL  0/0     -\n"
                                                          "G12  5   7 30= +3 more\n");
}

TEST(Satellites, OfASystemThatIsOffAreNotJustMissing)
{
    Model model;
    model.settings = {{"system glonass", "", "", "", "off"}, {"sbas", "", "", "", "on"}};
    const Canvas before = satelliteList(model, ascii, 6, 20);
    EXPECT_THAT(textOf(before), HasSubstr("GLO off\n"));
    EXPECT_EQ(styleOf(before, "GLO off"), Style::warning);
    model.add(epochWith({satellite(System::gps, 7, 45, 123, 42)}));
    EXPECT_THAT(textOf(satelliteList(model, ascii, 9, 20)), HasSubstr("GLO off\n"));
    EXPECT_THAT(textOf(carrierHistory(model, ascii, 7, 40)), HasSubstr("GLO   off\n"));
}

TEST(Satellites, ThatAreNotHeardAnyMoreAreLost)
{
    Model model;
    model.add(epochWith({satellite(System::gps, 7, 45, 123, 42)}));
    model.add(epochWith({satellite(System::gps, 7, 45, 123, 0)}));
    const Canvas canvas = satelliteList(model, ascii, 9, 20);
    EXPECT_THAT(textOf(canvas), HasSubstr("GPS  0/1  LOST\n"));
    EXPECT_EQ(styleOf(canvas, "GPS  0/1  LOST"), Style::bad);
}

TEST(SkyPlot, HasNorthAtTheTopAndTheHorizonAtTheRim)
{
    Model model;
    model.add(epochWith({satellite(System::gps, 1, 90, 0, 42), satellite(System::glonass, 2, 45, 90, 30, false),
                         satellite(System::galileo, 3, 45, 180, 0), satellite(System::beidou, 4, 0, 270, 40)}));
    Canvas canvas = skyPlot(model, ascii, 14, 27);
    EXPECT_EQ(canvas.at(6, 13).glyph, U'G');
    EXPECT_EQ(canvas.at(6, 19).glyph, U'r');
    EXPECT_EQ(canvas.at(9, 13).glyph, U'x');
    EXPECT_EQ(canvas.at(6, 1).glyph, U'C');
    EXPECT_EQ(canvas.at(0, 13).glyph, U'N');
    EXPECT_EQ(canvas.at(6, 25).glyph, U'E');
    EXPECT_EQ(canvas.at(12, 13).glyph, U'S');
    EXPECT_EQ(canvas.at(6, 13).style, Style::good);
    EXPECT_EQ(canvas.at(9, 13).style, Style::dim);
}

TEST(SkyPlot, DrawsNothingWhereThereIsNoRoom)
{
    for (int rows = 0; rows < 6; ++rows)
        for (int columns = 0; columns < 12; ++columns)
            skyPlot(Model{}, ascii, rows, columns);
    EXPECT_EQ(textOf(skyPlot(Model{}, ascii, 1, 1)), "\n");
}

TEST(CarrierHistory, ShowsADropAsOne)
{
    Model model;
    for (int i = 0; i < 15; ++i)
        model.add(epochWith({satellite(System::gps, 7, 45, 123, i < 10 ? 50 : 0)}));
    const Canvas canvas = carrierHistory(model, ascii, 13, 40);
    EXPECT_THAT(textOf(canvas), HasSubstr("GPS  LOST 50.0                       ##.\n"));
    EXPECT_EQ(canvas.at(2, 39).style, Style::bad);
    EXPECT_EQ(canvas.at(2, 38).style, Style::good);
    EXPECT_EQ(canvas.at(1, 38).glyph, U'#');
    EXPECT_EQ(canvas.at(1, 39).glyph, U' ');
}

TEST(PositionScatter, CountsMetresAroundTheMiddle)
{
    Model model;
    constexpr double kMetreDeg = 1 / 111'195.0;
    for (int i = 0; i < 5; ++i)
        model.add(fixAt(0, 0));
    for (int i = 0; i < 2; ++i)
        model.add(fixAt(2 * kMetreDeg, 0));
    model.add(fixAt(0, -4 * kMetreDeg));
    model.add(fixAt(2 * kMetreDeg, 4 * kMetreDeg));
    EXPECT_EQ(textOf(positionScatter(model, 4, 39)), "9 positions, 0.5 m a column\n"
                                                     "                   o       X\n"
                                                     "\n"
                                                     "           .       @\n");
    EXPECT_EQ(textOf(positionScatter(Model{}, 2, 30)), "Position: no fix yet\n\n");
}

TEST(ModemPanel, ShowsSettingsAndLsta)
{
    Model model;
    model.settings = {{"period", "", "ms", "1000, 500", "1000"},
                      {"sbas", "", "", "off, on", std::nullopt, "refused: Text (21)"},
                      {"format", "", "", "nmea, raw"}};
    model.lsta = {{"gps", true, 1, 41.25, ""}, {"glonass"}, {"beidou", false, 0, 0, "refused"}, {"galileo"}};
    View view;
    EXPECT_EQ(textOf(modemPanel(model, view, 5, 80)),
              "Settings                                      LSTA     status  value\n"
              "  period          1000 ms                     gps           1   41.2\n"
              "  sbas            refused: Text (21)          glonass       ?\n"
              "  format          ?                           beidou        refused\n"
              "                                              galileo       ?\n");
    view.mode = View::Mode::value;
    view.words = {"1000", "500"};
    view.word = 1;
    EXPECT_THAT(textOf(modemPanel(model, view, 5, 80)), HasSubstr("> period           1000 [500]"));
    view.words.clear();
    view.typed = "7";
    view.complaint = "'7' is not accepted";
    EXPECT_THAT(textOf(modemPanel(model, view, 5, 80)), HasSubstr("> period          7_  (1000, 500)"));
    EXPECT_THAT(textOf(modemPanel(model, view, 5, 80)), HasSubstr("  '7' is not accepted"));
}

TEST(ModemPanel, ShowsLstaBesideNarrowSettings)
{
    Model model;
    model.settings = {{"system glonass", "", "", "off, on", "off"},
                      {"sbas", "", "", "off, on", std::nullopt, "refused: A requested service"},
                      {"period", "", "ms", "1000, 500", "1000"}};
    model.lsta = {{"gps", true, 1, 41.25, ""}, {"glonass", true, -1, 12345678901.5, ""}, {"beidou"}, {"galileo"}};
    model.clientLibrary = "ArcRilD 1.0 (simulated)";
    EXPECT_EQ(textOf(modemPanel(model, View{}, 8, 56)), "Settings                        LSTA     status  value\n"
                                                        "  system glonass  off           gps           1   41.2\n"
                                                        "  sbas            refused: A..  glonass      -1 123456..\n"
                                                        "  period          1000 ms       beidou        ?\n"
                                                        "                                galileo       ?\n"
                                                        "\n"
                                                        "                                Versions\n"
                                                        "                                ArcRilD 1.0 (simulated)\n");
}

TEST(ModemPanel, TellsTheAgeOfWhatIsNotReadAnyMore)
{
    Model model;
    model.settings = {{"sbas", "", "", "off, on", "off"}};
    model.lsta = {{"gps", true, 1, 41.25, ""}, {"glonass"}, {"beidou"}, {"galileo"}};
    model.link = Link::open;
    model.readMs = 1000;
    model.nowMs = 30'999;
    const auto panel = [&] { return modemPanel(model, View{}, 3, 80); };
    EXPECT_EQ(panel().line(0), "Settings                                      LSTA     status  value");
    EXPECT_EQ(styleOf(panel(), "off"), Style::warning);
    EXPECT_EQ(styleOf(panel(), "1   41.2"), Style::good);
    model.nowMs = 31'000;
    EXPECT_EQ(panel().line(0), "Settings  30 s old                            LSTA     status  value");
    EXPECT_EQ(styleOf(panel(), "off"), Style::dim);
    EXPECT_EQ(styleOf(panel(), "1   41.2"), Style::dim);
    model.nowMs = 3000;
    model.link = Link::noDaemon;
    EXPECT_EQ(panel().line(0), "Settings  2 s old                             LSTA     status  value");
    EXPECT_EQ(styleOf(panel(), "off"), Style::dim);
}

TEST(ModemPanel, MarksTheNumberThatTheNextDigitReplaces)
{
    Model model;
    model.settings = {{"min-elevation", "", "", "a whole number from 5 to 45", "5"}};
    View view;
    view.mode = View::Mode::value;
    view.typed = "5";
    view.replaces = true;
    EXPECT_EQ(modemPanel(model, view, 3, 80).line(1), "> min-elevation   [5]  (a whole number from 5 to 45)");
    view.replaces = false;
    view.complaint = "'5000' is not accepted; accepted: a whole number from 5 to 45";
    const Canvas narrow = modemPanel(model, view, 3, 56);
    EXPECT_EQ(narrow.line(1), "> min-elevation   5_  (a whole number from 5 to 45)");
    EXPECT_EQ(narrow.line(2), "  '5000' is not accepted; accepted: a whole number fro..");
}

TEST(TasksPanel, ShowsWhatRunsAndWhatWaits)
{
    Model model;
    model.nowMs = 12'500;
    model.runningTask = "kelarc/KelArc.526: ARC_StartGNSSraw()";
    model.queued = 4;
    model.queuedTasks = {"one", "two", "three", "four"};
    model.waiting = {{1, "starting the output", 400, false, true}, {2, "reading sbas", 11'000}};
    for (int i = 0; i < 3; ++i)
        model.attempts.add({-1, "ARC_StartGNSSraw()", 5, "No daemon", 31});
    for (int i = 0; i < 3; ++i)
        model.addResult({"12:00:0" + std::to_string(i), Style::bad, "(31) ARC_StartGNSSraw()"}, "same");
    model.addResult({"12:00:09", Style::plain, "(0) ARC_Open()"});
    EXPECT_EQ(textOf(tasksPanel(model, 11, 70)), "Running     kelarc/KelArc.526: ARC_StartGNSSraw()\n"
                                                 "            attempt 4, without limit; last: No daemon (31)\n"
                                                 "In queue    4\n"
                                                 "            one\n"
                                                 "            two\n"
                                                 "            three\n"
                                                 "Unanswered  12 s  starting the output\n"
                                                 "            1 s  reading sbas\n"
                                                 "Results     without successful reads\n"
                                                 "12:00:02 3x (31) ARC_StartGNSSraw()\n"
                                                 "12:00:09 (0) ARC_Open()\n");
    EXPECT_EQ(styleOf(tasksPanel(model, 11, 70), "12 s"), Style::bad);
}

TEST(TasksPanel, TellsRetriesThatAreLeft)
{
    Model model;
    model.runningTask = "kelarc/KelArc.300: ARC_GetRilVersion()";
    EXPECT_THAT(textOf(tasksPanel(model, 8, 70)), HasSubstr("            attempt 1\n"));
    model.attempts.add({14, "ARC_GetRilVersion()", 5, "Text", 21});
    EXPECT_THAT(textOf(tasksPanel(model, 8, 70)), HasSubstr("attempt 2, 14 left; last: Text (21)\n"));
}

TEST(EventsPanel, ShowsTheNewest)
{
    Model model;
    EXPECT_EQ(textOf(eventsPanel(model, 2, 40)), "Notifications\nnone yet\n");
    for (int i = 0; i < 5; ++i)
        model.addEvent({"12:00:0" + std::to_string(i), Style::plain, "event"});
    model.lost = 7;
    EXPECT_EQ(textOf(eventsPanel(model, 3, 40)), "Notifications, 7 lost\n12:00:03 event\n12:00:04 event\n");
}

}  // namespace
}  // namespace kelarcctl
