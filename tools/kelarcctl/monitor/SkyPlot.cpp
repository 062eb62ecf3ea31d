#include "kelarcctl/monitor/Format.h"
#include "kelarcctl/monitor/Panels.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace kelarcctl {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kColumnsPerRow = 2;  // characters are about twice as high as wide

/// The sky seen from above, north up: maps elevation and azimuth to cells.
class Sky
{
public:
    Sky(int rows, int columns)
        : m_radiusRows(std::min((rows - 1) / 2.0, (columns - 1) / 2.0 / kColumnsPerRow)), m_centreRow((rows - 1) / 2.0),
          m_centreColumn((columns - 1) / 2.0)
    {
    }

    int row(double elevationDeg, double azimuthDeg) const
    {
        return static_cast<int>(std::lround(m_centreRow - distance(elevationDeg) * std::cos(azimuthDeg * kPi / 180)));
    }
    int column(double elevationDeg, double azimuthDeg) const
    {
        return static_cast<int>(
            std::lround(m_centreColumn + kColumnsPerRow * distance(elevationDeg) * std::sin(azimuthDeg * kPi / 180)));
    }

private:
    double distance(double elevationDeg) const
    {
        return (90 - std::clamp(elevationDeg, 0.0, 90.0)) / 90 * m_radiusRows;
    }

    double m_radiusRows;
    double m_centreRow;
    double m_centreColumn;
};

void drawRing(Canvas& canvas, const Sky& sky, const Glyphs& glyphs, int elevationDeg)
{
    const int step = canvas.rows() < 30 ? 3 : 1;  // about one character per step
    for (int azimuth = 0; azimuth < 360; azimuth += step)
        canvas.put(sky.row(elevationDeg, azimuth), sky.column(elevationDeg, azimuth), glyphs.ring, Style::dim);
    constexpr int kLabelAzimuthDeg = 135;
    canvas.text(sky.row(elevationDeg, kLabelAzimuthDeg), sky.column(elevationDeg, kLabelAzimuthDeg),
                std::to_string(elevationDeg), Style::dim);
}

void drawSatellites(Canvas& canvas, const Sky& sky, const nmea::Epoch& epoch)
{
    enum Turn  // the later ones cover the earlier ones
    {
        notTracked,
        tracked,
        used,
        end,
    };
    for (int turn = notTracked; turn < end; ++turn)
        for (const nmea::Satellite& satellite : epoch.inView) {
            const Turn its = satellite.isUsed ? used : satellite.carrierDbHz ? tracked : notTracked;
            if (its != turn || !satellite.elevationDeg || !satellite.azimuthDeg)
                continue;
            const char letter = kSystemNames[nmea::indexOf(satellite.system)].letter;
            const char shown = its == used ? letter : its == tracked ? static_cast<char>(std::tolower(letter)) : 'x';
            canvas.put(sky.row(*satellite.elevationDeg, *satellite.azimuthDeg),
                       sky.column(*satellite.elevationDeg, *satellite.azimuthDeg), static_cast<char32_t>(shown),
                       its == used      ? Style::good
                       : its == tracked ? Style::plain
                                        : Style::dim);
        }
}

}  // namespace

Canvas skyPlot(const Model& model, const Glyphs& glyphs, int rows, int columns)
{
    Canvas canvas(rows, columns);
    if (rows < 5 || columns < 9)
        return canvas;
    const Sky sky(rows - 1, columns);
    for (const int elevation : {0, 30, 60})
        drawRing(canvas, sky, glyphs, elevation);
    const std::string directions = "NESW";
    for (int i = 0; i < 4; ++i)
        canvas.text(sky.row(0, i * 90), sky.column(0, i * 90), directions.substr(static_cast<std::size_t>(i), 1),
                    Style::strong);
    if (model.epoch)
        drawSatellites(canvas, sky, *model.epoch);
    canvas.text(rows - 1, 2, "G used  g tracked  x not tracked", Style::dim);
    return canvas;
}

}  // namespace kelarcctl
