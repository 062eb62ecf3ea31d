#pragma once

#include "support/TextTable.h"

#include <vector>

namespace kelarcctl {

/// The program's exit codes and their meanings.
std::vector<support::TextRow> exitCodeRows();

}  // namespace kelarcctl
