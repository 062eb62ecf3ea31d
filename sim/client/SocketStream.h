#pragma once

#include <mutex>
#include <string>
#include <string_view>

namespace arcsim {

/// One connection of a Unix socket, closed when the object is destroyed. All functions may be called at the same time.
class SocketStream
{
public:
    /// Does not wait: a server that does not accept at once counts as absent. Throws std::system_error.
    explicit SocketStream(const std::string& path);
    ~SocketStream();
    SocketStream(const SocketStream&) = delete;
    SocketStream& operator=(const SocketStream&) = delete;

    /// Queues the bytes for sending. Never waits.
    void queue(std::string_view bytes);
    /// Sends the queued bytes, or leaves them to a thread that is already sending. Waits until the other side has taken
    /// all or end() is called.
    void flush();
    /// Waits for bytes; empty when the other side is gone.
    std::string receive();
    /// Makes flush() and receive() return.
    void end();

private:
    bool send(std::string_view bytes);

    int m_descriptor = -1;

    // guarded by m_mutex, which is not held while sending
    std::mutex m_mutex{};
    std::string m_unsent{};
    bool m_isSending = false;
};

}  // namespace arcsim
