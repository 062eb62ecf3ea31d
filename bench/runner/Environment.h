#pragma once

#include "runner/Table.h"

namespace bench {

/// Where the figures come from: processor, system, compiler, libraries, load.
Table environment();

}  // namespace bench
