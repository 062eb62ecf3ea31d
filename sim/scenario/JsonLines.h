#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string_view>

namespace arcsim {

enum class LineOf
{
    value,
    key,  ///< by which the value is a member of its object
};

/// In which line `part` of `document` stands in `text`, from which the document was parsed. 0 if it is no part of it.
std::size_t lineOf(LineOf what, const nlohmann::json& part, const nlohmann::json& document, std::string_view text);

}  // namespace arcsim
