#pragma once

#include "arc/ArcRilD.h"

namespace arcrecord {

/// A function that the real library gets in place of the application's handler: it records the event and calls the
/// handler. Every handler has a fixed function of its own, so the real library alone decides which handler an event
/// goes to. Null for a null handler. There are 16 such functions; further handlers are passed on directly and not
/// recorded.
ArcNotificationHandler recordingHandlerFor(ArcNotificationHandler handler);

}  // namespace arcrecord
