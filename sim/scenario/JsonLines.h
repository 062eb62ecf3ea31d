#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string_view>

namespace arcsim {

enum class LineOf
{
    value,
    key,  ///< the key of the value in its object
};

/// The line of `text` that holds `part` of `document`, which was parsed from `text`. 0 if `part` is not in the
/// document.
std::size_t lineOf(LineOf what, const nlohmann::json& part, const nlohmann::json& document, std::string_view text);

}  // namespace arcsim
