#pragma once

#include <mutex>
#include <string>
#include <string_view>

namespace arcsim {

/// One connection of a Unix socket, closed with the object. All functions may be called at the same time.
class SocketStream
{
public:
    /// Does not wait: a server that does not take connections in time is as none. Throws std::system_error.
    explicit SocketStream(const std::string& path);
    ~SocketStream();
    SocketStream(const SocketStream&) = delete;
    SocketStream& operator=(const SocketStream&) = delete;

    /// Has the bytes sent behind those that were queued before. Never waits.
    void queue(std::string_view bytes);
    /// Sends what is queued, or leaves it to the thread that is sending already. Waits for the other side, until it has
    /// taken all or end() is called.
    void flush();
    /// Waits for bytes; empty when the other side is gone.
    std::string receive();
    /// Makes flush() and receive() come back.
    void end();

private:
    bool send(std::string_view bytes);

    int m_descriptor = -1;

    // guarded by m_mutex, which is not held while anything is sent
    std::mutex m_mutex{};
    std::string m_unsent{};
    bool m_isSending = false;
};

}  // namespace arcsim
