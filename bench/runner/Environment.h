#pragma once

#include "runner/Table.h"

namespace bench {

/// The environment of the measurement: processor, system, compiler, libraries, load.
Table environment();

}  // namespace bench
