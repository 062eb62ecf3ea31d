#pragma once

#include "arc/ArcRilD.h"

namespace arcrecord {

/// What the real library gets in place of the application's handler: it records the event and calls the handler. Every
/// handler has its own, the same at each call, so the real library alone decides which of them an event goes to. Null
/// for a null handler. There are 16; what an application registers beyond them is handed on as it is.
ArcNotificationHandler recordingHandlerFor(ArcNotificationHandler handler);

}  // namespace arcrecord
