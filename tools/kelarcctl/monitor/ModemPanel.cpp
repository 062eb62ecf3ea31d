#include "kelarcctl/monitor/Format.h"
#include "kelarcctl/monitor/Panels.h"

#include <algorithm>

namespace kelarcctl {

namespace {

constexpr int kNameColumn = 2;
constexpr int kValueColumn = 18;
constexpr int kLstaWidth = 24;
constexpr int kWidestSettings = 46;

std::string shownValue(const SettingRow& row)
{
    if (row.value)
        return *row.value + (row.unit.empty() ? "" : " " + row.unit);
    return row.problem.empty() ? "?" : row.problem;
}

std::string choiceText(const View& view, const SettingRow& row)
{
    if (view.words.empty())
        return (view.replaces ? "[" + view.typed + "]" : view.typed + "_") + "  (" + row.accepted + ")";
    std::string text;
    for (std::size_t i = 0; i < view.words.size(); ++i)
        text += (i == view.word ? "[" + view.words[i] + "]" : " " + view.words[i] + " ");
    return text;
}

void drawSettings(Canvas& canvas, const Model& model, const View& view, int width)
{
    const bool areOld = model.areSettingsOld();
    const int column = canvas.text(0, 0, "Settings", Style::strong);
    if (areOld)
        canvas.text(0, column + 2, ageText(model.nowMs - model.readMs) + " old", Style::warning);
    for (std::size_t i = 0; i < model.settings.size(); ++i) {
        const SettingRow& row = model.settings[i];
        const int at = 1 + static_cast<int>(i);
        const bool isChosen = view.mode != View::Mode::watching && view.setting == i;
        const Style style = isChosen              ? Style::selected
                            : areOld              ? Style::dim
                            : row.value           ? (row.value == "off" ? Style::warning : Style::plain)
                            : row.problem.empty() ? Style::dim
                                                  : Style::bad;
        canvas.text(at, 0, isChosen ? ">" : " ", style);
        canvas.text(at, kNameColumn, row.command);
        if (isChosen && view.mode == View::Mode::value) {
            // The list is wider than the settings; clear the rest of the row, or half of another text would remain.
            for (int each = kValueColumn; each < canvas.columns(); ++each)
                canvas.put(at, each, U' ');
            canvas.text(at, kValueColumn, choiceText(view, row), style);
        } else {
            canvas.text(at, kValueColumn, fitted(shownValue(row), width - kValueColumn - 2), style);
        }
    }
    if (!view.complaint.empty())
        canvas.text(1 + static_cast<int>(model.settings.size()), kNameColumn,
                    fitted(view.complaint, canvas.columns() - kNameColumn), Style::bad);
}

Canvas lstaTable(const Model& model, int rows, int columns)
{
    Canvas canvas(rows, columns);
    canvas.text(0, 0, "LSTA     status  value", Style::strong);
    int at = 1;
    for (const LstaRow& row : model.lsta) {
        canvas.text(at, 0, row.system);
        if (row.isKnown)  // a number that is cut off would look like another number
            canvas.text(at, 9, fitted(format("%6d %6.1f", row.status, row.value), columns - 9),
                        model.areSettingsOld() ? Style::dim
                        : row.status != 0      ? Style::good
                                               : Style::warning);
        else
            canvas.text(at, 14, fitted(row.problem.empty() ? "?" : row.problem, columns - 14),
                        row.problem.empty() ? Style::dim : Style::bad);
        ++at;
    }
    at += 1;
    canvas.text(at++, 0, "Versions", Style::strong);
    for (const std::string& version : {model.clientLibrary, model.ril[0], model.ril[1]})
        canvas.text(at++, 0, fitted(version, columns));
    return canvas;
}

}  // namespace

Canvas modemPanel(const Model& model, const View& view, int rows, int columns)
{
    Canvas canvas(rows, columns);
    const int width = std::min(columns - kLstaWidth, kWidestSettings);
    canvas.paste(lstaTable(model, rows, columns - width), 0, width);
    drawSettings(canvas, model, view, width);  // drawn last, since the choice of values may be wide
    return canvas;
}

}  // namespace kelarcctl
