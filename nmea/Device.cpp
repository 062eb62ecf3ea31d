#include "nmea/Device.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace nmea {

Device::Device(const std::string& path)
    : m_descriptor(::open(path.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)), m_path(path)
{
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "cannot open the receiver's device '" + path + "'");
    termios mode{};
    if (::tcgetattr(m_descriptor, &mode) == 0) {  // a pipe or a file has no mode and needs none
        ::cfmakeraw(&mode);
        ::tcsetattr(m_descriptor, TCSANOW, &mode);
    }
}

Device::~Device()
{
    ::close(m_descriptor);
}

std::string Device::read()
{
    char bytes[4096];
    const ssize_t count = ::read(m_descriptor, bytes, sizeof bytes);
    if (count > 0)
        return std::string(bytes, static_cast<std::size_t>(count));
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return {};
    const int error = count == 0 ? ENODEV : errno;  // end of file: the other side has closed
    throw std::system_error(error, std::generic_category(), "the receiver's device '" + m_path + "' is gone");
}

}  // namespace nmea
