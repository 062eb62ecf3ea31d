#include "kelarcctl/monitor/Format.h"
#include "kelarcctl/monitor/Panels.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace kelarcctl {

namespace {

constexpr int kNumbersWidth = 15;
constexpr double kFaintestDbHz = 10;
constexpr double kStrongestDbHz = 50;
constexpr double kMetresPerDegree = 111'195;  // of latitude, on a sphere
constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180;

std::string nowText(const Model& model, nmea::System system)
{
    const std::string state = stateOf(model, system).text;  // ends with the present value
    return state.substr(state.find_last_of(' ') == std::string::npos ? state.size() : state.find_last_of(' ') + 1);
}

void drawColumns(Canvas& canvas, const Glyphs& glyphs, int top, int height, const std::vector<double>& values)
{
    const int first = canvas.columns() - static_cast<int>(values.size());
    for (int i = 0; i < static_cast<int>(values.size()); ++i) {
        const double value = values[static_cast<std::size_t>(i)];
        // A zero is drawn too, so that a loss of signal is visible.
        const double part = std::max((value - kFaintestDbHz) / (kStrongestDbHz - kFaintestDbHz), 0.01) * height;
        for (int level = 0; level < height; ++level)
            canvas.put(top + height - 1 - level, first + i, glyphs.level(std::min(part - level, 1.0)),
                       value > 0 ? Style::good : Style::bad);
    }
}

struct Offset
{
    double eastM;
    double northM;
};

std::vector<Offset> offsetsOf(const std::deque<Model::Position>& positions)
{
    const auto [south, north] = std::minmax_element(positions.begin(), positions.end(),
                                                    [](auto& a, auto& b) { return a.latitudeDeg < b.latitudeDeg; });
    const auto [west, east] = std::minmax_element(positions.begin(), positions.end(),
                                                  [](auto& a, auto& b) { return a.longitudeDeg < b.longitudeDeg; });
    const double latitude = (south->latitudeDeg + north->latitudeDeg) / 2;
    const double longitude = (west->longitudeDeg + east->longitudeDeg) / 2;
    std::vector<Offset> offsets;
    for (const Model::Position& position : positions)
        offsets.push_back(
            {(position.longitudeDeg - longitude) * kMetresPerDegree * std::cos(latitude * kRadiansPerDegree),
             (position.latitudeDeg - latitude) * kMetresPerDegree});
    return offsets;
}

/// The smallest of 0.1, 0.2, 0.5, 1 and so on that fits all offsets.
double metresPerColumn(const std::vector<Offset>& offsets, int rows, int columns)
{
    double needed = 0;
    for (const Offset& offset : offsets)
        needed = std::max(
            {needed, std::abs(offset.eastM) / ((columns - 1) / 2.0), std::abs(offset.northM) / ((rows - 1) / 2.0) / 2});
    double decade = 0.1;
    while (decade < 1e7)
        for (const double step : {1.0, 2.0, 5.0}) {
            if (decade * step >= needed)
                return decade * step;
            if (step > 4)
                decade *= 10;
        }
    return decade;
}

}  // namespace

Canvas carrierHistory(const Model& model, const Glyphs& glyphs, int rows, int columns)
{
    Canvas canvas(rows, columns);
    canvas.text(0, 0, fitted(format("C/N0  now best  a column: %d epochs", History::kEpochsEach), columns),
                Style::strong);
    const int height = std::clamp((rows - 1) / static_cast<int>(nmea::kSystemCount), 1, 4);
    for (std::size_t i = 0; i < nmea::kSystemCount; ++i) {
        const auto system = static_cast<nmea::System>(i);
        const int top = 1 + static_cast<int>(i) * height;
        const int row = top + height - 1;
        const Style style = stateOf(model, system).style;
        canvas.text(row, 0, kSystemNames[i].shown, style);
        canvas.text(row, 4, format("%5s", nowText(model, system).c_str()), style);
        if (model.carriers[i].wasHeard())
            canvas.text(row, 10, format("%4.1f", model.carriers[i].most()), Style::dim);
        drawColumns(canvas, glyphs, top, height,
                    model.carriers[i].last(static_cast<std::size_t>(std::max(columns - kNumbersWidth, 0))));
    }
    return canvas;
}

Canvas positionScatter(const Model& model, int rows, int columns)
{
    Canvas canvas(rows, columns);
    if (model.positions.empty() || rows < 4 || columns < 10) {
        canvas.text(0, 0, "Position: no fix yet", Style::strong);
        return canvas;
    }
    const std::vector<Offset> offsets = offsetsOf(model.positions);
    const int plotRows = rows - 1;
    const double scale = metresPerColumn(offsets, plotRows, columns);
    canvas.text(0, 0, fitted(format("%d positions, %g m a column", static_cast<int>(offsets.size()), scale), columns),
                Style::strong);
    std::map<std::pair<int, int>, int> counts;
    const auto cellOf = [&](const Offset& offset) {
        return std::pair(1 + static_cast<int>(std::lround((plotRows - 1) / 2.0 - offset.northM / scale / 2)),
                         static_cast<int>(std::lround((columns - 1) / 2.0 + offset.eastM / scale)));
    };
    for (const Offset& offset : offsets)
        ++counts[cellOf(offset)];
    for (const auto& [cell, count] : counts)
        canvas.put(cell.first, cell.second, count < 2 ? U'.' : count < 5 ? U'o' : U'@');
    const auto [row, column] = cellOf(offsets.back());
    canvas.put(row, column, U'X', Style::strong);
    return canvas;
}

Canvas signalPanel(const Model& model, const Glyphs& glyphs, int rows, int columns)
{
    Canvas canvas(rows, columns);
    const int scatter = std::min(columns / 2 - 2, 2 * rows);
    canvas.paste(carrierHistory(model, glyphs, rows, columns - scatter - 2), 0, 0);
    canvas.paste(positionScatter(model, rows, scatter), 0, columns - scatter);
    return canvas;
}

}  // namespace kelarcctl
