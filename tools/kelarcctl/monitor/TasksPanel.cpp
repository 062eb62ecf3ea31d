#include "kelarcctl/monitor/Format.h"
#include "kelarcctl/monitor/Panels.h"

#include <algorithm>

namespace kelarcctl {

namespace {

constexpr int kTextColumn = 12;
constexpr std::size_t kMostListed = 3;

/// Draws as many of the newest entries as fit from this row on, the newest last.
void drawEntries(Canvas& canvas, int row, const std::deque<Entry>& entries)
{
    const auto room = static_cast<std::size_t>(std::max(canvas.rows() - row, 0));
    for (std::size_t i = entries.size() - std::min(room, entries.size()); i < entries.size(); ++i) {
        const int column = canvas.text(row, 0, entries[i].time, Style::dim) + 1;
        const std::string times = entries[i].times > 1 ? format("%dx ", entries[i].times) : "";
        canvas.text(row++, column, fitted(times + entries[i].text, canvas.columns() - column), entries[i].style);
    }
}

std::string attemptText(const Model& model)
{
    const int failed = model.attempts.failedOf(model.runningTask);
    const ResultLine& last = model.attempts.last();
    if (failed == 0)
        return "attempt 1";
    return format("attempt %d, ", failed + 1) +
           (last.retriesLeft < 0 ? "without limit" : format("%d left", last.retriesLeft)) + "; last: " + last.text +
           format(" (%d)", last.code);
}

int drawRunning(Canvas& canvas, int row, const Model& model)
{
    canvas.text(row, 0, "Running", Style::strong);
    if (model.runningTask.empty()) {
        canvas.text(row, kTextColumn, "nothing", Style::dim);
        return row + 1;
    }
    const bool hasFailed = model.attempts.failedOf(model.runningTask) > 0;
    canvas.text(row, kTextColumn, fitted(model.runningTask, canvas.columns() - kTextColumn));
    canvas.text(row + 1, kTextColumn, fitted(attemptText(model), canvas.columns() - kTextColumn),
                hasFailed ? Style::warning : Style::plain);
    return row + 2;
}

int drawQueued(Canvas& canvas, int row, const Model& model)
{
    canvas.text(row, 0, "In queue", Style::strong);
    canvas.text(row, kTextColumn, std::to_string(model.queued));
    for (std::size_t i = 0; i < std::min(kMostListed, model.queuedTasks.size()); ++i)
        canvas.text(++row, kTextColumn, fitted(model.queuedTasks[i], canvas.columns() - kTextColumn), Style::dim);
    return row + 1;
}

int drawWaiting(Canvas& canvas, int row, const Model& model)
{
    canvas.text(row, 0, "Unanswered", Style::strong);
    if (model.waiting.empty())
        canvas.text(row++, kTextColumn, "nothing", Style::dim);
    const std::size_t shown = std::min(kMostListed, model.waiting.size());
    for (std::size_t i = 0; i < shown; ++i) {
        const Waiting& each = model.waiting[i];
        canvas.text(row++, kTextColumn, ageText(model.nowMs - each.sinceMs) + "  " + each.what,
                    each.isOverdue ? Style::bad : Style::plain);
    }
    if (model.waiting.size() > shown)
        canvas.text(row++, kTextColumn, format("and %d more", static_cast<int>(model.waiting.size() - shown)));
    return row;
}

}  // namespace

Canvas tasksPanel(const Model& model, int rows, int columns)
{
    Canvas canvas(rows, columns);
    int row = drawRunning(canvas, 0, model);
    row = drawQueued(canvas, row, model);
    row = drawWaiting(canvas, row, model);
    canvas.text(row, 0, "Results", Style::strong);
    canvas.text(row, kTextColumn, "without successful reads", Style::dim);
    drawEntries(canvas, row + 1, model.results);
    return canvas;
}

Canvas eventsPanel(const Model& model, int rows, int columns)
{
    Canvas canvas(rows, columns);
    const std::string lost = model.lost > 0 ? format(", %d lost", static_cast<int>(model.lost)) : "";
    canvas.text(0, 0, "Notifications" + lost, Style::strong);
    if (model.events.empty())
        canvas.text(1, 0, "none yet", Style::dim);
    drawEntries(canvas, 1, model.events);
    return canvas;
}

}  // namespace kelarcctl
