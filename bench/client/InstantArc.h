#pragma once

namespace bench {

/// Delivers an event as the client library's notification thread would; a handler must have been registered.
void notify(int id, void* data, int length);

}  // namespace bench
