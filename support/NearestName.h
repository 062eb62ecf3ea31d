#pragma once

#include "support/Words.h"

#include <optional>
#include <string>
#include <vector>

namespace support {

/// The one that was probably meant by `given`: it differs in few letters or `given` is the beginning of it alone. The
/// letters' case is of no matter.
std::optional<std::string> nearestName(const std::string& given, const std::vector<std::string>& names);

/// A refusal: "unknown KIND 'given'; did you mean name? accepted: name, name". What was probably meant is looked for
/// with `spelling`, if that is not how it was given.
std::string unknownName(const std::string& kind, const std::string& given, const std::vector<std::string>& accepted,
                        const std::optional<std::string>& spelling = std::nullopt);

std::string lowerCase(std::string text);

}  // namespace support
