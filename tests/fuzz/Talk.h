#pragma once

#include "fuzz/Peers.h"

#include <chrono>
#include <functional>
#include <string_view>

namespace fuzz {

/// Has peers say what an input holds, line by line as on a socket. Bytes that no JSON holds are signs:
///   19      peers that the service has closed leave
///   1A n    10 * n milliseconds pass
///   1C c n  the byte c, 256 * n times
///   1D      what has been said so far arrives before the rest
///   1E      what follows is from the next of the peers
///   1F      the peer hangs up; it connects again when it says more
void talk(Peers& peers, std::string_view input, const std::function<void(std::chrono::milliseconds)>& pass);

}  // namespace fuzz
