#pragma once

namespace seeds {

/// How many pieces of memory the C++ code of this process holds. The executable supplies operator new and counts.
long heldBlocks();

}  // namespace seeds
