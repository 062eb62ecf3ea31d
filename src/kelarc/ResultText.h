#pragma once

namespace kelarc {

/// The fixed text of a result code; "Unknown result" for a code outside 0 to 39. Never null, valid for ever.
const char* resultText(int code);

}  // namespace kelarc
