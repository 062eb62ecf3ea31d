#include "kelarcctl/monitor/Screen.h"

#include "kelarcctl/monitor/Format.h"
#include "kelarcctl/monitor/Panels.h"

#include <algorithm>
#include <cmath>

namespace kelarcctl {

namespace {

constexpr int kHeaderRows = 4;
constexpr long long kPatienceMs = 2000;  // how long a request may take before the header shows it
constexpr long long kSilenceMs = 5000;   // how long without a sentence before the screen says so
constexpr long long kNoticeShownMs = 10000;

Entry stateOfModem(const Model& model)
{
    if (model.link == Link::noDaemon)
        return {"", Style::bad, "NO DAEMON for " + ageText(model.nowMs - model.linkSinceMs) + " (31)"};
    if (model.link == Link::opening)
        return {"", Style::warning, "opening the modem"};
    switch (model.output) {
    case RawOutput::running:
        return {"", Style::good, "output on " + model.device};
    case RawOutput::starting:
        return {"", Style::warning, "output is starting"};
    default:
        return {"", Style::warning, "output is off"};
    }
}

void drawFirstRow(Canvas& canvas, const Model& model, const View& view)
{
    int column = canvas.text(0, 0, "KelArc monitor  ", Style::strong);
    const std::string utc =
        model.epoch ? nmea::dateText(*model.epoch) + " " + nmea::timeText(*model.epoch) + " UTC" : "--:--:-- UTC";
    const int room = canvas.columns() - static_cast<int>(utc.size()) - 1 - (view.isPaused ? 8 : 0);
    const Entry state = stateOfModem(model);
    column = canvas.text(0, column, fitted(state.text, room - column), state.style);
    if (view.isPaused)
        canvas.text(0, room + 1, "PAUSED", Style::selected);
    canvas.textAtEnd(0, utc, model.isEpochOld() ? Style::dim : Style::plain);
}

std::string angleText(const std::optional<double>& degrees, const char* hemispheres, int width)
{
    if (!degrees)
        return std::string(static_cast<std::size_t>(width), ' ') + "-";
    return format("%*.6f%c", width, std::abs(*degrees), hemispheres[*degrees < 0 ? 1 : 0]);
}

std::string valueText(const std::optional<double>& value, int width, int digits)
{
    return value ? format("%*.*f", width, digits, *value) : std::string(static_cast<std::size_t>(width - 1), ' ') + "-";
}

void drawFix(Canvas& canvas, const Model& model)
{
    const nmea::Epoch epoch = model.epoch.value_or(nmea::Epoch{});
    const bool isFixed = epoch.fix != nmea::Fix::none;
    const char* const fix = epoch.fix == nmea::Fix::threeD ? "3D fix" : isFixed ? "2D fix" : "no fix";
    int used = 0;
    int inView = 0;
    for (const nmea::Satellites& satellites : epoch.satellites) {
        used += satellites.used;
        inView += satellites.inView;
    }
    const bool isOld = model.isEpochOld();
    int column = canvas.text(1, 0, fix, isOld ? Style::dim : isFixed ? Style::good : Style::bad);
    column = canvas.text(1, column + 1,
                         angleText(epoch.latitudeDeg, "NS", 9) + " " + angleText(epoch.longitudeDeg, "EW", 10) + " " +
                             valueText(epoch.altitudeM, 7, 1) + " m " + valueText(epoch.speedKmh, 5, 1) + " km/h " +
                             valueText(epoch.courseDeg, 3, 0) + " deg  ",
                         isOld ? Style::dim : Style::plain);
    if (isOld)
        canvas.text(1, column, ageText(model.nowMs - model.epochMs) + " ago", Style::warning);
    else
        canvas.text(1, column, format("used %d/%d", used, inView));
}

/// Panels with the receiver's epoch, grey once the epoch is outdated.
Canvas ofReceiver(const Model& model, Canvas panel)
{
    if (model.isEpochOld())
        panel.restyle(Style::dim);
    return panel;
}

/// The most urgent news.
Entry news(const Model& model)
{
    if (!model.waiting.empty()) {
        const Waiting& oldest = model.waiting.front();
        const int failed = model.attempts.failedOf(model.runningTask);
        if (model.nowMs - oldest.sinceMs >= kPatienceMs)
            return {"", oldest.isOverdue ? Style::bad : Style::warning,
                    "no answer for " + ageText(model.nowMs - oldest.sinceMs) + ": " + oldest.what +
                        (failed > 0 ? format(", attempt %d (%d)", failed + 1, model.attempts.last().code) : "")};
    }
    if (!model.notice.text.empty() && model.nowMs - model.noticeMs < kNoticeShownMs)
        return model.notice;
    if (model.output == RawOutput::running && model.nowMs - model.lastSentenceMs >= kSilenceMs)
        return {"", Style::bad, "no sentence for " + ageText(model.nowMs - model.lastSentenceMs)};
    return {};
}

void drawNews(Canvas& canvas, const Model& model)
{
    std::string bad;
    if (model.wrongChecksums > 0 || model.garbage > 0)
        bad = format("bad checksums %llu  garbage %llu", static_cast<unsigned long long>(model.wrongChecksums),
                     static_cast<unsigned long long>(model.garbage));
    const Entry entry = news(model);
    canvas.text(2, 0, fitted(entry.text, canvas.columns() - static_cast<int>(bad.size()) - 1), entry.style);
    canvas.textAtEnd(2, bad, Style::warning);
}

Panel shownPanel(const View& view, bool roomy)
{
    return view.panel == Panel::all && !roomy ? Panel::overview : view.panel;
}

void drawTabs(Canvas& canvas, Panel shown, bool roomy)
{
    struct Tab
    {
        Panel panel;
        const char* text;
    };
    constexpr Tab kTabs[] = {{Panel::all, " 0 All "},         {Panel::overview, " 1 Overview "},
                             {Panel::signal, " 2 Signal "},   {Panel::modem, " 3 Modem "},
                             {Panel::tasks, " 4 Tasks+Log "}, {Panel::events, " 5 Events "},
                             {Panel::help, " 6 Help "}};
    int column = 0;
    for (const Tab& tab : kTabs)
        if (tab.panel != Panel::all || roomy)
            column = canvas.text(3, column, tab.text, tab.panel == shown ? Style::selected : Style::plain);
}

void drawFooter(Canvas& canvas, const View& view)
{
    const char* const keys = view.mode == View::Mode::setting ? "Up/Down choose a setting   Enter change it   Esc leave"
                             : view.mode == View::Mode::value
                                 ? (view.words.empty() ? "Digits or arrows: value   Enter send   Esc back"
                                                       : "Arrows or first letter: value   Enter send   Esc back")
                                 : "1-6 Tab panel  p pause  s setting  g start  x stop  r read  h help  q quit";
    canvas.text(canvas.rows() - 1, 0, keys, Style::dim);
}

Canvas titled(const char* title, const Canvas& content, char32_t rule)
{
    Canvas canvas(content.rows() + 1, content.columns());
    for (int column = 0; column < canvas.columns(); ++column)
        canvas.put(0, column, rule, Style::dim);
    canvas.text(0, 2, title, Style::strong);
    canvas.paste(content, 1, 0);
    return canvas;
}

/// The most important panels at the top; panels that grow take the rest.
Canvas allPanels(const Model& model, const View& view, const Glyphs& glyphs, int rows, int columns)
{
    constexpr int kGap = 2;
    constexpr int kModemRows = 16;
    Canvas canvas(rows, columns);
    const int right = std::max(columns * 45 / 100, 56);
    const int left = columns - right - kGap;
    const int signal = rows / 3;
    const int overview = rows - signal;
    const int tasks = (rows - kModemRows) * 3 / 5;
    const int events = rows - kModemRows - tasks;
    canvas.paste(
        titled(" Satellites ", ofReceiver(model, overviewPanel(model, glyphs, overview - 1, left)), glyphs.rule), 0, 0);
    canvas.paste(titled(" Signal ", ofReceiver(model, signalPanel(model, glyphs, signal - 1, left)), glyphs.rule),
                 overview, 0);
    canvas.paste(titled(" Modem ", modemPanel(model, view, kModemRows - 1, right), glyphs.rule), 0, left + kGap);
    canvas.paste(titled(" Tasks and log ", tasksPanel(model, tasks - 1, right), glyphs.rule), kModemRows, left + kGap);
    canvas.paste(titled(" Events ", eventsPanel(model, events - 1, right), glyphs.rule), kModemRows + tasks,
                 left + kGap);
    return canvas;
}

Canvas panelOf(const Model& model, const View& view, const Glyphs& glyphs, Panel panel, int rows, int columns)
{
    switch (panel) {
    case Panel::all:
        return allPanels(model, view, glyphs, rows, columns);
    case Panel::signal:
        return ofReceiver(model, signalPanel(model, glyphs, rows, columns));
    case Panel::modem:
        return modemPanel(model, view, rows, columns);
    case Panel::tasks:
        return tasksPanel(model, rows, columns);
    case Panel::events:
        return eventsPanel(model, rows, columns);
    case Panel::help:
        return helpPanel(rows, columns);
    default:
        return ofReceiver(model, overviewPanel(model, glyphs, rows, columns));
    }
}

}  // namespace

bool isRoomy(int rows, int columns)
{
    return rows >= 40 && columns >= 120;
}

Canvas drawScreen(const Model& model, const View& view, const Glyphs& glyphs, int rows, int columns)
{
    Canvas canvas(rows, columns);
    if (rows < kLeastRows || columns < kLeastColumns) {
        canvas.text(0, 0, format("The monitor needs %dx%d; this is %dx%d.", kLeastColumns, kLeastRows, columns, rows),
                    Style::warning);
        return canvas;
    }
    const bool roomy = isRoomy(rows, columns);
    const Panel panel = shownPanel(view, roomy);
    drawFirstRow(canvas, model, view);
    drawFix(canvas, model);
    drawNews(canvas, model);
    drawTabs(canvas, panel, roomy);
    canvas.paste(panelOf(model, view, glyphs, panel, rows - kHeaderRows - 1, columns), kHeaderRows, 0);
    drawFooter(canvas, view);
    return canvas;
}

}  // namespace kelarcctl
