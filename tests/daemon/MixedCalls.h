#pragma once

#include "daemon/Output.h"

namespace daemon_test {

/// COUNT [KEY VALUE VALUE]: makes so many calls of all kinds whose answers do not depend on what others do, and with a
/// key of its own writes and reads that between two values. "0 right", or "1" and the first call that was answered
/// otherwise than it must be.
std::string mixedCalls(const Words& words);

}  // namespace daemon_test
