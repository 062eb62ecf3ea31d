#pragma once

#include "support/TextTable.h"

#include <vector>

namespace kelarcctl {

/// The keys of the monitor with what they do.
std::vector<support::TextRow> keyRows();

}  // namespace kelarcctl
