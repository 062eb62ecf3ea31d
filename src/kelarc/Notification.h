#pragma once

namespace kelarc {

/// The handler that is registered with the client library, which calls it on its notification thread for every event of
/// the modem. Passes the event to the object constructed last.
void onArcNotification(int id, void* data, int length);

}  // namespace kelarc
