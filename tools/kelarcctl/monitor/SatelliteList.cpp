#include "kelarcctl/monitor/Format.h"
#include "kelarcctl/monitor/Panels.h"

#include <algorithm>
#include <cmath>

namespace kelarcctl {

namespace {

constexpr int kLeastWidth = 15;  // "G07 45 123 42", a bar one column wide, a gap
constexpr int kBarColumn = 13;
constexpr int kLongestBar = 20;
constexpr double kBestCarrierDbHz = 50;
constexpr int kBarFromDbHz = 10;

using nmea::Satellite;

/// A line of the list: the satellite, or the heading of its system.
struct Line
{
    nmea::System system{};
    const Satellite* satellite = nullptr;
};

std::vector<Line> linesOf(const Model& model)
{
    std::vector<Line> lines;
    for (std::size_t i = 0; i < nmea::kSystemCount; ++i) {
        const auto system = static_cast<nmea::System>(i);
        lines.push_back({system, nullptr});
        if (!model.epoch)
            continue;
        for (const Satellite& satellite : model.epoch->inView)
            if (satellite.system == system)
                lines.push_back({system, &satellite});
    }
    return lines;
}

std::string numberText(const std::optional<double>& value, int width)
{
    return value ? format("%*d", width, static_cast<int>(std::lround(*value)))
                 : std::string(static_cast<std::size_t>(width), '-');
}

void drawBar(Canvas& canvas, const Glyphs& glyphs, int row, int column, int width, double carrierDbHz)
{
    const double part = (carrierDbHz - kBarFromDbHz) / (kBestCarrierDbHz - kBarFromDbHz);
    if (width <= 1) {
        canvas.put(row, column, glyphs.level(std::max(part, 0.01)), Style::good);
        return;
    }
    const int full = std::clamp(static_cast<int>(std::lround(part * width)), 1, width);
    for (int i = 0; i < full; ++i)
        canvas.put(row, column + i, glyphs.levels.back(), Style::good);
}

void drawSatellite(Canvas& canvas, const Glyphs& glyphs, int row, int column, int width, const Satellite& satellite)
{
    const Style style = satellite.isUsed ? Style::good : satellite.carrierDbHz ? Style::plain : Style::dim;
    const std::string id = format("%c%02d", kSystemNames[nmea::indexOf(satellite.system)].letter, satellite.number);
    canvas.text(row, column,
                format("%-3s %s %s %s", id.c_str(), numberText(satellite.elevationDeg, 2).c_str(),
                       numberText(satellite.azimuthDeg, 3).c_str(), numberText(satellite.carrierDbHz, 2).c_str()),
                style);
    if (satellite.carrierDbHz)
        drawBar(canvas, glyphs, row, column + kBarColumn, std::min(width - kBarColumn - 1, kLongestBar),
                *satellite.carrierDbHz);
}

}  // namespace

SystemState stateOf(const Model& model, nmea::System system)
{
    const std::size_t i = nmea::indexOf(system);
    const std::string name = kSystemNames[i].shown;
    if (model.isOff(system))
        return {name + " off", Style::warning};
    if (!model.epoch)
        return {name, Style::strong};
    const nmea::Satellites& satellites = model.epoch->satellites[i];
    const auto& inView = model.epoch->inView;
    double sum = 0;
    for (const Satellite& satellite : inView)
        sum += satellite.system == system ? satellite.carrierDbHz.value_or(0) : 0;
    const int tracked = model.tracked(system);
    const std::string numbers = format("%s %2d/%-2d", name.c_str(), satellites.used, satellites.inView);
    if (tracked > 0)
        return {numbers + format(" %4.1f", sum / tracked), Style::strong};
    return model.carriers[i].wasHeard() ? SystemState{numbers + " LOST", Style::bad}
                                        : SystemState{numbers + "    -", Style::strong};
}

Canvas satelliteList(const Model& model, const Glyphs& glyphs, int rows, int columns)
{
    Canvas canvas(rows, columns);
    const std::vector<Line> lines = linesOf(model);
    const int most = std::max(columns / kLeastWidth, 1);
    const int needed = (static_cast<int>(lines.size()) + rows - 1) / std::max(rows, 1);
    const int across = std::clamp(needed, 1, most);
    const int width = std::min(columns / across, kBarColumn + kLongestBar + 1);
    const int room = across * rows;
    const bool isCut = static_cast<int>(lines.size()) > room;
    const int shown = isCut ? room - 1 : static_cast<int>(lines.size());
    for (int i = 0; i < shown; ++i) {
        const int column = i / rows * width;
        const Line& line = lines[static_cast<std::size_t>(i)];
        if (line.satellite != nullptr) {
            drawSatellite(canvas, glyphs, i % rows, column, width, *line.satellite);
            continue;
        }
        const SystemState state = stateOf(model, line.system);
        canvas.text(i % rows, column, state.text, state.style);
    }
    if (isCut && rows > 0)
        canvas.text(rows - 1, (across - 1) * width, format("+%d more", static_cast<int>(lines.size()) - shown),
                    Style::warning);
    return canvas;
}

Canvas overviewPanel(const Model& model, const Glyphs& glyphs, int rows, int columns)
{
    Canvas canvas(rows, columns);
    const int sky = std::clamp(columns - 3 * kLeastWidth, 0, 2 * rows);
    canvas.paste(satelliteList(model, glyphs, rows, columns - sky), 0, 0);
    canvas.paste(skyPlot(model, glyphs, rows, sky), 0, columns - sky);
    return canvas;
}

}  // namespace kelarcctl
