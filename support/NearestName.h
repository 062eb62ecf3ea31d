#pragma once

#include "support/Words.h"

#include <optional>
#include <string>
#include <vector>

namespace support {

/// The name that `given` probably means: it differs in few letters, or it is the only name that begins with `given`.
/// Upper and lower case are equal.
std::optional<std::string> nearestName(const std::string& given, const std::vector<std::string>& names);

/// A refusal: "unknown KIND 'given'; did you mean name? accepted: name, name". The nearest name is searched with
/// `spelling`, if that differs from `given`.
std::string unknownName(const std::string& kind, const std::string& given, const std::vector<std::string>& accepted,
                        const std::optional<std::string>& spelling = std::nullopt);

std::string lowerCase(std::string text);

}  // namespace support
