#include "kelarcctl/Log.h"

#include "kelarc/logsink.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

namespace kelarcctl {

namespace {

constexpr char kSyslogSocket[] = "/dev/log";

/// Whether a process receives what is sent to this path.
bool isServed(const char* path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, sizeof address.sun_path - 1);
    for (const int type : {SOCK_DGRAM, SOCK_STREAM}) {
        const int socket = ::socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
        const bool isIt =
            socket >= 0 && ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        if (socket >= 0)
            ::close(socket);
        if (isIt)
            return true;
    }
    return false;
}

}  // namespace

Log::Log(const std::string& target, int lowestLevel)
{
    using namespace kelarc::logsink;
    const auto lose = [this](int, const char*) { m_hasLost = true; };
    if (target == "journal") {
        if (!isServed(kJournalSocket) && !isServed(kSyslogSocket))
            throw std::system_error(errno, std::generic_category(), "--log: there is neither a journal nor syslog");
        m_write = toJournal("kelarcctl", lowestLevel, [this, syslog = toSyslog()](int level, const char* line) {
            if (isServed(kSyslogSocket))  // syslog() reports no error if nobody receives
                syslog(level, line);
            else
                m_hasLost = true;
        });
    } else if (target == "stderr") {
        m_write = toDescriptor(STDERR_FILENO, lowestLevel, lose);
    } else {
        m_file = ::open(target.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
        if (m_file < 0)
            throw std::system_error(errno, std::generic_category(), "--log: " + target);
        m_write = toDescriptor(m_file, lowestLevel, lose);
    }
}

Log::~Log()
{
    if (m_file >= 0)
        ::close(m_file);
}

void Log::line(int level, const char* text)
{
    m_results.add(text);
    m_write(level, text);
}

}  // namespace kelarcctl
