#pragma once

#include <string>
#include <string_view>

namespace arcsim {

/// One connection of a Unix socket, closed with the object.
///
/// send() and receive() may run at the same time; endReceive() makes a receive() that waits come back.
class SocketStream
{
public:
    /// Throws std::system_error.
    explicit SocketStream(const std::string& path);
    ~SocketStream();
    SocketStream(const SocketStream&) = delete;
    SocketStream& operator=(const SocketStream&) = delete;

    /// False when the other side is gone.
    bool send(std::string_view bytes);
    /// Waits for bytes; empty when the other side is gone.
    std::string receive();
    void end();

private:
    int m_descriptor = -1;
};

}  // namespace arcsim
