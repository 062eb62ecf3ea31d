#include "client/SocketStream.h"

#include "support/StandardDescriptors.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace arcsim {

SocketStream::SocketStream(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        throw std::system_error(ENAMETOOLONG, std::generic_category(), path);
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    // Without this flag, connect() would wait for a server whose queue of connections is full.
    m_descriptor = support::aboveStandard(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), path);
    if (::connect(m_descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::fcntl(m_descriptor, F_SETFL, 0) != 0) {
        const int error = errno;
        ::close(m_descriptor);
        throw std::system_error(error, std::generic_category(), path);
    }
}

SocketStream::~SocketStream()
{
    ::close(m_descriptor);
}

void SocketStream::queue(std::string_view bytes)
{
    const std::scoped_lock lock(m_mutex);
    m_unsent += bytes;
}

void SocketStream::flush()
{
    std::unique_lock lock(m_mutex);
    if (std::exchange(m_isSending, true))
        return;
    while (!m_unsent.empty()) {
        const std::string bytes = std::exchange(m_unsent, {});
        lock.unlock();
        if (!send(bytes))
            end();  // the receiving thread notices and releases all waiting threads
        lock.lock();
    }
    m_isSending = false;
}

bool SocketStream::send(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::send(m_descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

std::string SocketStream::receive()
{
    std::array<char, 16384> buffer{};
    for (;;) {
        const ssize_t count = ::recv(m_descriptor, buffer.data(), buffer.size(), 0);
        if (count < 0 && errno == EINTR)
            continue;
        return count > 0 ? std::string(buffer.data(), static_cast<std::size_t>(count)) : std::string();
    }
}

void SocketStream::end()
{
    ::shutdown(m_descriptor, SHUT_RDWR);
}

}  // namespace arcsim
