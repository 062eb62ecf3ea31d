#pragma once

#include "kelarcctl/Settings.h"

#include <string>
#include <vector>

namespace kelarcctl {

/// A setting and its wanted value, in its plain spelling.
struct Wanted
{
    const Setting* setting;
    std::string value;
};

/// Reads a file of settings: {"settings": {"period": 500, "sbas": true, "system": {"qzss": "on"}}}, with or without the
/// outer object. Throws Failure that lists all errors, one per line; `name` is the file's name in these.
std::vector<Wanted> readSettings(const std::string& text, const std::string& name);

}  // namespace kelarcctl
