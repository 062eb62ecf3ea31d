#pragma once

#include "arc/ArcRilD.h"

#include <atomic>
#include <functional>

// The executable's own client library, which asks for no memory. Calls succeed unless a test says otherwise.
namespace client {

extern std::atomic<int> calls;                       ///< of all functions
extern std::atomic<int> code;                        ///< what they answer, ARC_Open and ARC_Close apart
extern std::atomic<bool> worksWithoutMemory;         ///< the worker has no memory from the call on
extern std::atomic<const char*> text;                ///< written wherever a text is asked for
extern std::atomic<int> indicatorOnEntry;            ///< what the last writing of a setting brought along
extern std::atomic<ArcNotificationHandler> handler;  ///< as registered

void reset();

}  // namespace client
