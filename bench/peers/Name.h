#pragma once

namespace bench {

/// As long as the names of the library's tasks are: 59 characters.
constexpr const char* kTaskName = "kelarc/KelArc.367: Get ARC_CheckModuleSetting(\"Power/Cpus\")";
static_assert(sizeof "kelarc/KelArc.367: Get ARC_CheckModuleSetting(\"Power/Cpus\")" == 59 + 1, "59 characters");

}  // namespace bench
