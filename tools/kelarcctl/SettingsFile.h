#pragma once

#include "kelarcctl/Settings.h"

#include <string>
#include <vector>

namespace kelarcctl {

/// A setting and the value that it is to have, in its plain spelling.
struct Wanted
{
    const Setting* setting;
    std::string value;
};

/// What a file of settings says: {"settings": {"period": 500, "sbas": true, "system": {"qzss": "on"}}}, with or
/// without the outer object. Throws Failure with everything that is
/// wrong, a line each; `name` is what the file is called then.
std::vector<Wanted> readSettings(const std::string& text, const std::string& name);

}  // namespace kelarcctl
