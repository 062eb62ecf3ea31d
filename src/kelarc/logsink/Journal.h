#pragma once

// The native protocol of systemd's journal. Part of kelarc/logsink.h.

#include "Line.h"
#include "Printable.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>

namespace kelarc::logsink::detail {

/// Where in the library a line was logged: "KelArc::getLstaGnss.1021: ..."; empty if the line does not say it.
struct Origin
{
    std::string_view function;
    std::string_view line;
};

inline Origin originOf(std::string_view text)
{
    const std::size_t scope = text.find("::");
    const std::size_t end = text.find(": ");
    if (scope == std::string_view::npos || end == std::string_view::npos || scope > end)
        return {};
    const std::string_view place = text.substr(scope + 2, end - scope - 2);
    const std::size_t dot = place.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == place.size() ||
        place.find_first_not_of("0123456789", dot + 1) != std::string_view::npos)
        return {};
    return {place.substr(0, dot), place.substr(dot + 1)};
}

/// Adds a field in the form of the journal's native protocol. Values have no newline: it would begin another field.
inline void addField(std::string& datagram, std::string_view name, std::string_view value)
{
    ((datagram += name) += '=') += printable(value);
    datagram += '\n';
}

inline std::string journalEntry(const std::string& identifier, int level, std::string_view text)
{
    std::string entry;
    addField(entry, "MESSAGE", text);
    addField(entry, "PRIORITY", std::to_string(rowOf(level).priority));
    addField(entry, "SYSLOG_IDENTIFIER", identifier);
    addField(entry, "KELARC_LEVEL", std::to_string(level));
    if (const Origin origin = originOf(text); !origin.function.empty()) {
        addField(entry, "CODE_FUNC", origin.function);
        addField(entry, "CODE_LINE", origin.line);
    }
    return entry;
}

/// The journal's socket. Not connected: a journal that is restarted is found again.
class JournalSocket
{
public:
    explicit JournalSocket(const std::string& path) : m_socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        m_address.sun_family = AF_UNIX;
        if (path.size() < sizeof m_address.sun_path)  // otherwise it stays empty, and nothing can be sent
            std::memcpy(m_address.sun_path, path.c_str(), path.size() + 1);
    }

    /// False when there is no journal, or when its queue is full: this function never waits.
    bool send(const std::string& entry) const
    {
        iovec part{const_cast<char*>(entry.data()), entry.size()};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        return sendMessage(message) || ((errno == EMSGSIZE || errno == ENOBUFS) && sendAsFile(entry));
    }

private:
    /// Hands over an entry that is too long for a datagram as a sealed file in memory.
    bool sendAsFile(const std::string& entry) const
    {
        const Descriptor file(::memfd_create("kelarc-log", MFD_CLOEXEC | MFD_ALLOW_SEALING));
        if (file.get() < 0 || !writeAll(file.get(), entry) ||
            ::fcntl(file.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL) != 0)
            return false;
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
        msghdr message{};
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        auto* const header = reinterpret_cast<cmsghdr*>(control.data());
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof(int));
        const int descriptor = file.get();
        std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
        return sendMessage(message);
    }

    bool sendMessage(msghdr& message) const
    {
        message.msg_name = const_cast<sockaddr_un*>(&m_address);
        message.msg_namelen = sizeof m_address;
        ssize_t sent = -1;
        do
            sent = ::sendmsg(m_socket.get(), &message, MSG_NOSIGNAL | MSG_DONTWAIT);
        while (sent < 0 && errno == EINTR);
        return sent >= 0;
    }

    Descriptor m_socket;
    sockaddr_un m_address{};
};

}  // namespace kelarc::logsink::detail
