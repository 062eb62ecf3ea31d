#pragma once

#include "kelarcctl/monitor/Canvas.h"
#include "kelarcctl/monitor/Model.h"

#include <string>

namespace kelarcctl {

inline nmea::Satellite satellite(nmea::System system, int number, double elevationDeg, double azimuthDeg,
                                 double carrierDbHz, bool isUsed = true)
{
    return {system,
            number,
            elevationDeg,
            azimuthDeg,
            carrierDbHz > 0 ? std::optional(carrierDbHz) : std::nullopt,
            carrierDbHz > 0 && isUsed};
}

/// A moment with these satellites in view.
inline nmea::Epoch epochWith(const std::vector<nmea::Satellite>& satellites)
{
    nmea::Epoch epoch;
    epoch.utcMs = ((3 * 60) + 0) * 60'000 + 14'000;
    epoch.date = nmea::Date{2024, 6, 12};
    epoch.inView = satellites;
    for (const nmea::Satellite& each : satellites) {
        nmea::Satellites& counts = epoch.satellites[nmea::indexOf(each.system)];
        ++counts.inView;
        counts.used += each.isUsed ? 1 : 0;
    }
    return epoch;
}

inline nmea::Epoch fixAt(double latitudeDeg, double longitudeDeg)
{
    nmea::Epoch epoch;
    epoch.fix = nmea::Fix::threeD;
    epoch.latitudeDeg = latitudeDeg;
    epoch.longitudeDeg = longitudeDeg;
    return epoch;
}

inline std::string textOf(const Canvas& canvas)
{
    std::string text;
    for (int row = 0; row < canvas.rows(); ++row)
        text += canvas.line(row) + "\n";
    return text;
}

/// The style of the first cell of a text on the canvas.
inline Style styleOf(const Canvas& canvas, const std::string& text)
{
    for (int row = 0; row < canvas.rows(); ++row) {
        std::string line;
        for (int column = 0; column < canvas.columns(); ++column)
            line += canvas.at(row, column).glyph < 0x80 ? static_cast<char>(canvas.at(row, column).glyph) : '~';
        if (const std::size_t at = line.find(text); at != std::string::npos)
            return canvas.at(row, static_cast<int>(at)).style;
    }
    throw std::out_of_range("'" + text + "' is not there:\n" + textOf(canvas));
}

}  // namespace kelarcctl
