#pragma once

#include <string_view>

namespace kelarc {

/// The fixed text of a result code; "Unknown result" for a code outside 0 to 39. Ended by a zero, valid for ever.
std::string_view resultText(int code);

}  // namespace kelarc
