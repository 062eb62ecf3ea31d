#include "support/Files.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace support {

namespace {

std::string textOf(int error)
{
    return std::generic_category().message(error);
}

int openFor(const std::string& path, const ReadRules& rules)
{
    // Opened without waiting: the name may be that of a pipe without a writer.
    const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | (rules.mustBeOwn ? O_NOFOLLOW : 0);
    int descriptor = -1;
    do
        descriptor = ::open(path.c_str(), flags);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

std::string allOf(InputFile& file)
{
    std::string content;
    std::array<char, 65536> part{};
    for (std::size_t count = 0; (count = file.read(part.data(), part.size())) > 0;)
        content.append(part.data(), count);
    return content;
}

}  // namespace

InputFile::InputFile(const std::string& path, const ReadRules& rules)
    : m_name(path), m_rules(rules), m_descriptor(openFor(path, rules)), m_isOurs(true)
{
    if (m_descriptor < 0)
        fail(errno == ELOOP && m_rules.mustBeOwn ? "Is a symbolic link" : textOf(errno));
    try {
        requireAccepted();
    } catch (...) {
        ::close(m_descriptor);
        throw;
    }
}

InputFile::InputFile(int descriptor, const std::string& name, const ReadRules& rules)
    : m_name(name), m_rules(rules), m_descriptor(descriptor), m_isOurs(false)
{
}

InputFile::~InputFile()
{
    if (m_isOurs)
        ::close(m_descriptor);
}

void InputFile::requireAccepted() const
{
    struct stat info = {};
    if (::fstat(m_descriptor, &info) != 0)
        fail(textOf(errno));
    if (S_ISDIR(info.st_mode))
        fail(textOf(EISDIR));
    const bool isStream = S_ISFIFO(info.st_mode) || S_ISCHR(info.st_mode);
    if (!S_ISREG(info.st_mode) && !(isStream && m_rules.mayBeStream))
        fail("Is no regular file");
    if (m_rules.mustBeOwn && info.st_uid != ::geteuid())
        fail("Belongs to the user " + std::to_string(info.st_uid));
    if (m_rules.mustBeOwn && (info.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        fail("Others may write to it");
}

std::size_t InputFile::read(char* buffer, std::size_t size)
{
    for (;;) {
        const ssize_t count = ::read(m_descriptor, buffer, size);
        if (count >= 0) {
            m_count += static_cast<std::size_t>(count);
            if (m_count > m_rules.largest)
                throw FileError(m_name + ": a larger file is not accepted; accepted: at most " +
                                std::to_string(m_rules.largest) + " bytes");
            return static_cast<std::size_t>(count);
        }
        if (errno == EAGAIN) {
            pollfd waiting{m_descriptor, POLLIN, 0};
            ::poll(&waiting, 1, -1);
        } else if (errno != EINTR) {
            fail(textOf(errno));
        }
    }
}

void InputFile::fail(const std::string& reason) const
{
    throw FileError(m_name + ": cannot be read: " + reason + "; accepted: " + m_rules.accepted);
}

std::string readFile(const std::string& path, const ReadRules& rules)
{
    InputFile file(path, rules);
    return allOf(file);
}

std::string readStandardInput(const ReadRules& rules)
{
    InputFile file(STDIN_FILENO, "standard input", rules);
    return allOf(file);
}

std::string fileOfEnvironment(const char* variable)
{
    const char* const value = ::secure_getenv(variable);
    return value == nullptr ? "" : value;
}

}  // namespace support
