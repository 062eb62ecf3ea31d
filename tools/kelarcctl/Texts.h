#pragma once

#include "support/TextTable.h"

#include <vector>

namespace kelarcctl {

/// The exit codes of the program with what they mean.
std::vector<support::TextRow> exitCodeRows();

}  // namespace kelarcctl
