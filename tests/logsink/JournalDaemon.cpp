#include "logsink/JournalDaemon.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace {

std::string contentOf(int file)
{
    std::string content;
    char part[4096];
    ::lseek(file, 0, SEEK_SET);
    for (ssize_t got = 0; (got = ::read(file, part, sizeof part)) > 0;)
        content.append(part, static_cast<std::size_t>(got));
    return content;
}

/// "NAME=value\n", or "NAME\n", 8 bytes of length, least significant first, the value and "\n".
bool takeField(std::string& rest, std::map<std::string, std::string>& fields)
{
    const std::size_t end = rest.find_first_of("=\n");
    if (end == std::string::npos)
        return false;
    const std::string name = rest.substr(0, end);
    std::size_t begin = end + 1;
    std::size_t size = 0;
    if (rest[end] == '=') {
        const std::size_t newline = rest.find('\n', begin);
        if (newline == std::string::npos)
            return false;
        size = newline - begin;
    } else {
        if (rest.size() < begin + 8)
            return false;
        for (std::size_t i = 8; i-- > 0;)
            size = size << 8 | static_cast<unsigned char>(rest[begin + i]);
        begin += 8;
    }
    if (size >= rest.size() - begin || rest[begin + size] != '\n')
        return false;
    fields[name] = rest.substr(begin, size);
    rest.erase(0, begin + size + 1);
    return true;
}

}  // namespace

JournalDaemon::JournalDaemon(std::size_t pathLength)
{
    char folder[] = "/tmp/kelarc-journal-XXXXXX";
    if (::mkdtemp(folder) == nullptr)
        throw std::runtime_error("no folder for the journal's socket");
    m_folder = folder;
    m_path = m_folder + "/socket";
    if (m_path.size() < pathLength)
        m_path.append(pathLength - m_path.size(), 'x');
    restart();
}

JournalDaemon::~JournalDaemon()
{
    stop();
    ::rmdir(m_folder.c_str());
}

void JournalDaemon::stop()
{
    if (m_socket >= 0)
        ::close(m_socket);
    m_socket = -1;
    ::unlink(m_path.c_str());
}

void JournalDaemon::restart()
{
    stop();
    m_socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, m_path.c_str(), std::min(sizeof address.sun_path, m_path.size() + 1));
    if (::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("the journal's socket cannot be bound");
}

std::optional<std::string> JournalDaemon::receive(Entry& entry)
{
    std::vector<char> bytes(1 << 20);
    iovec part{bytes.data(), bytes.size()};
    alignas(cmsghdr) char control[256] = {};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t got = ::recvmsg(m_socket, &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    if (got < 0)
        return std::nullopt;
    const cmsghdr* const header = CMSG_FIRSTHDR(&message);
    if (header == nullptr)
        return std::string(bytes.data(), static_cast<std::size_t>(got));
    int file = -1;
    std::memcpy(&file, CMSG_DATA(header), sizeof file);
    entry.wasFile = got == 0;
    entry.seals = ::fcntl(file, F_GET_SEALS);
    std::string content = contentOf(file);
    ::close(file);
    return content;
}

std::optional<std::string> JournalDaemon::datagram()
{
    Entry entry;
    return receive(entry);
}

std::optional<JournalDaemon::Entry> JournalDaemon::next()
{
    Entry entry;
    std::optional<std::string> rest = receive(entry);
    if (!rest)
        return std::nullopt;
    while (!rest->empty())
        if (!takeField(*rest, entry.fields))
            return std::nullopt;
    return entry;
}
