#pragma once

#include "kelarcctl/monitor/Model.h"
#include "kelarcctl/monitor/View.h"

namespace kelarcctl {

constexpr int kLeastRows = 24;
constexpr int kLeastColumns = 80;

/// Whether there is room for several panels at once.
bool isRoomy(int rows, int columns);

/// The whole screen: header, panels, footer; or one line if the screen is too small.
Canvas drawScreen(const Model& model, const View& view, const Glyphs& glyphs, int rows, int columns);

}  // namespace kelarcctl
