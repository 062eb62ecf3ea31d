#pragma once

namespace kelarc {

/// What is registered with the client library: called on its notification thread for every event of the modem. Hands
/// the event to the object constructed last.
void onArcNotification(int id, void* data, int length);

}  // namespace kelarc
