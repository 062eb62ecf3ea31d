#pragma once

namespace bench {

/// A name as long as those of the library's tasks: 59 characters.
constexpr const char* kTaskName = "kelarc/KelArc.367: Get ARC_CheckModuleSetting(\"Power/Cpus\")";
static_assert(sizeof "kelarc/KelArc.367: Get ARC_CheckModuleSetting(\"Power/Cpus\")" == 59 + 1, "59 characters");

}  // namespace bench
