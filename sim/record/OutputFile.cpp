#include "record/OutputFile.h"

#include "record/Complaint.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace arcrecord {

namespace {

/// Empties the file. A pipe or a terminal cannot be emptied and need not be.
bool isEmptied(int descriptor)
{
    int outcome = 0;
    do
        outcome = ftruncate(descriptor, 0);
    while (outcome != 0 && errno == EINTR);
    return outcome == 0 || errno == EINVAL;
}

}  // namespace

void OutputFile::open()
{
    if (!nameBase())
        return;
    bool taken = m_ofChild;
    if (!taken) {
        std::memcpy(m_path.data(), m_base.data(), m_base.size());
        openExclusively(taken);
    }
    if (taken) {
        std::snprintf(m_path.data(), m_path.size(), "%s.%ld", m_base.data(), static_cast<long>(getpid()));
        taken = false;
        openExclusively(taken);
        if (taken)
            fail("another process is recording to it");
    }
}

/// A child process keeps the name that its parent determined.
bool OutputFile::nameBase()
{
    if (m_named)
        return true;
    const char* const named = secure_getenv("ARCRECORD_FILE");
    if (named == nullptr || *named == '\0') {
        std::snprintf(m_base.data(), m_base.size(), "arcrecord.%ld.jsonl", static_cast<long>(getpid()));
        m_named = true;
        return true;
    }
    if (std::strlen(named) > kLongestName) {
        std::memcpy(m_path.data(), named, 40);
        std::strcpy(m_path.data() + 40, "...");
        fail("a name of more than 4000 bytes");
        return false;
    }
    std::strcpy(m_base.data(), named);
    m_named = true;
    m_isGiven = true;
    return true;
}

void OutputFile::openExclusively(bool& taken)
{
    // The default name is predictable, so others may have put a link there to a file that must not be emptied. A name
    // from the user may be a pipe, but the application must not wait for its reader.
    const bool isForeseen = !m_isGiven || std::strcmp(m_path.data(), m_base.data()) != 0;
    const int flags = O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | (isForeseen ? O_NOFOLLOW : 0);
    // Emptied only once no other process can be writing; appending never leaves a gap.
    int descriptor = ::open(m_path.data(), flags, 0600);
    if (descriptor >= 0 && descriptor <= STDERR_FILENO) {  // that stream was closed in the application: its later
                                                           // output must not land in the recording
        const int above = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        ::close(descriptor);
        descriptor = above;
    }
    if (descriptor < 0)
        return fail(std::strerror(errno));
    struct stat info = {};
    if (isForeseen && (fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode) || info.st_uid != geteuid())) {
        ::close(descriptor);
        return fail("it is there and no file of this user");
    }
    fcntl(descriptor, F_SETFL, O_WRONLY | O_APPEND);  // from now on writing waits for slow readers
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        ::close(descriptor);
        taken = true;
        return;
    }
    m_descriptor = descriptor;
    if (!isEmptied(descriptor))
        fail(std::strerror(errno));
}

void OutputFile::write(const char* bytes, std::size_t count)
{
    while (count > 0 && m_descriptor >= 0) {
        const ssize_t written = ::write(m_descriptor, bytes, count);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return fail(std::strerror(errno));
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
}

void OutputFile::leaveToParent()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
    m_ofChild = m_named;
}

void OutputFile::fail(const char* reason)
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
    char line[kLongestName + 200];
    std::snprintf(line, sizeof line,
                  "arcrecord: %s: cannot be written: %s; calls are passed on without being recorded\n", m_path.data(),
                  reason);
    complain(line);
}

}  // namespace arcrecord
