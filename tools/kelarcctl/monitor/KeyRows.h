#pragma once

#include "support/TextTable.h"

#include <vector>

namespace kelarcctl {

/// The monitor's keys and their meanings.
std::vector<support::TextRow> keyRows();

}  // namespace kelarcctl
