#include "receiver/PseudoTerminal.h"

#include "support/StandardDescriptors.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace arcsim {

namespace {

[[noreturn]] void fail(const std::string& what)
{
    throw std::runtime_error(what + ": " + std::generic_category().message(errno));
}

}  // namespace

PseudoTerminal::PseudoTerminal()
    : m_master(support::aboveStandard(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)))
{
    if (m_master < 0)
        fail("cannot open a pseudo-terminal");
    try {
        std::array<char, 64> name{};
        if (::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0 ||
            ::ptsname_r(m_master, name.data(), name.size()) != 0)
            fail("cannot set up a pseudo-terminal");
        m_path = name.data();
        reset();  // also needed for hasReader(), which is right only after the first close of the other end
    } catch (...) {
        ::close(m_master);
        throw;
    }
}

PseudoTerminal::~PseudoTerminal()
{
    ::close(m_master);
}

bool PseudoTerminal::hasReader() const
{
    pollfd state{m_master, 0, 0};
    return ::poll(&state, 1, 0) >= 0 && (state.revents & POLLHUP) == 0;
}

std::size_t PseudoTerminal::write(std::string_view bytes)
{
    const ssize_t count = ::write(m_master, bytes.data(), bytes.size());
    return count < 0 ? 0 : static_cast<std::size_t>(count);
}

// This side cannot see how many bytes are still unread, so it opens the other end for a moment and asks there. A reader
// does not notice; and since the other end is closed again at once, hasReader() stays right.
//
// Written bytes pass through two buffers: a worker of the kernel moves them from the port's to the line discipline's,
// where the reader gets them. Counting the latter (FIONREAD) misses bytes that the worker has not moved yet. poll()
// does not: when it finds nothing to read, it waits for the worker to finish and looks again. The worker leaves bytes
// behind only if the line discipline's 4096 bytes are full. A reader would then empty that buffer first and wake the
// worker afterwards, and in between everything would look taken. Hence kMostUnread is half of that; the other half is
// for bytes that the reader's mode does not let it take yet.
bool PseudoTerminal::isTaken() const
{
    const int slave = ::open(m_path.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (slave < 0)
        return errno == EBUSY;  // exclusive use by the reader: bytes that the kernel has taken count as taken
    pollfd state{slave, POLLIN, 0};
    const bool known = ::poll(&state, 1, 0) >= 0;
    ::close(slave);
    return known && (state.revents & POLLIN) == 0;
}

void PseudoTerminal::discardInput()
{
    std::array<char, 256> buffer{};
    while (::read(m_master, buffer.data(), buffer.size()) > 0) {
    }
}

void PseudoTerminal::reset()
{
    const int slave = ::open(m_path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (slave < 0)
        fail("cannot open " + m_path);
    termios mode{};
    const bool done = ::tcgetattr(slave, &mode) == 0 && (::cfmakeraw(&mode), ::tcsetattr(slave, TCSANOW, &mode) == 0) &&
                      ::tcflush(slave, TCIOFLUSH) == 0;
    const int error = errno;
    ::close(slave);
    errno = error;
    if (!done)
        fail("cannot set the mode of " + m_path);
}

}  // namespace arcsim
