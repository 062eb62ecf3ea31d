#pragma once

#include "kelarcctl/monitor/Model.h"
#include "kelarcctl/monitor/View.h"

namespace kelarcctl {

// Each function draws as much of its subject as fits into the rows and columns.

Canvas satelliteList(const Model& model, const Glyphs& glyphs, int rows, int columns);
Canvas skyPlot(const Model& model, const Glyphs& glyphs, int rows, int columns);
Canvas overviewPanel(const Model& model, const Glyphs& glyphs, int rows, int columns);

Canvas carrierHistory(const Model& model, const Glyphs& glyphs, int rows, int columns);
Canvas positionScatter(const Model& model, int rows, int columns);
Canvas signalPanel(const Model& model, const Glyphs& glyphs, int rows, int columns);

Canvas modemPanel(const Model& model, const View& view, int rows, int columns);
Canvas tasksPanel(const Model& model, int rows, int columns);
Canvas eventsPanel(const Model& model, int rows, int columns);
Canvas helpPanel(int rows, int columns);

/// Name, numbers of satellites and any problem: "GPS 10/12 41.2", "GLO off".
struct SystemState
{
    std::string text{};
    Style style = Style::plain;
};
SystemState stateOf(const Model& model, nmea::System system);

}  // namespace kelarcctl
