#include "support/Files.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace support {

namespace {

/// The reason of a failure. The caller adds the path.
struct Refusal
{
    std::string reason;
};

[[noreturn]] void refuse(int error)
{
    throw Refusal{std::generic_category().message(error)};
}

void require(bool isDone)
{
    if (!isDone)
        refuse(errno);
}

/// A descriptor that this object owns.
class Descriptor
{
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) { require(descriptor >= 0); }
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return m_descriptor; }
    /// Remote storage may report an error only at closing.
    void close()
    {
        const int closed = std::exchange(m_descriptor, -1);
        require(::close(closed) == 0 || errno == EINTR);
    }

private:
    int m_descriptor;
};

void writeAll(int descriptor, std::string_view content)
{
    while (!content.empty()) {
        const ssize_t count = ::write(descriptor, content.data(), content.size());
        if (count > 0)
            content.remove_prefix(static_cast<std::size_t>(count));
        else if (count == 0)
            refuse(EIO);
        else if (errno != EINTR)
            refuse(errno);
    }
}

/// Storage that does not support syncing needs none.
void sync(int descriptor)
{
    int outcome = 0;
    do
        outcome = ::fsync(descriptor);
    while (outcome != 0 && errno == EINTR);
    require(outcome == 0 || errno == EINVAL);
}

std::string unforeseenName()
{
    std::uint64_t number = 0;
    require(::getrandom(&number, sizeof number, 0) == sizeof number);
    std::array<char, 40> name{};
    std::snprintf(name.data(), name.size(), ".kelarc-%016llx", static_cast<unsigned long long>(number));
    return name.data();
}

/// The folder of a path. All further steps use its descriptor, so renaming the folder does no harm.
class Folder
{
public:
    explicit Folder(const std::string& path)
        : m_slash(path.rfind('/')), m_name(m_slash == std::string::npos ? path : path.substr(m_slash + 1)),
          m_descriptor(open(m_slash == std::string::npos ? "."
                            : m_slash == 0               ? "/"
                                                         : path.substr(0, m_slash)))
    {
        if (m_name.empty())
            refuse(path.empty() ? ENOENT : EISDIR);
    }

    int get() const { return m_descriptor.get(); }
    const std::string& name() const { return m_name; }
    void keep() const
    {
        if (m_isReadable)
            sync(get());
    }

private:
    /// A folder without read permission can take a file, but cannot be synced.
    int open(const std::string& folder)
    {
        int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        m_isReadable = descriptor >= 0;
        if (descriptor < 0 && errno == EACCES)
            descriptor = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        return descriptor;
    }

    const std::size_t m_slash;
    const std::string m_name;
    bool m_isReadable = false;
    const Descriptor m_descriptor;
};

/// A file with an unpredictable name, which is removed unless it has taken the place of the old one.
class Draft
{
public:
    Draft(const Folder& folder, mode_t mode)
        : m_folder(folder), m_name(unforeseenName()),
          m_file(::openat(folder.get(), m_name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode))
    {
    }
    ~Draft()
    {
        if (!m_isInPlace)
            ::unlinkat(m_folder.get(), m_name.c_str(), 0);
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    int get() const { return m_file.get(); }
    void fill(std::string_view content)
    {
        writeAll(get(), content);
        sync(get());
        m_file.close();
    }
    void takePlace()
    {
        require(::renameat(m_folder.get(), m_name.c_str(), m_folder.get(), m_folder.name().c_str()) == 0);
        m_isInPlace = true;
    }

private:
    const Folder& m_folder;
    const std::string m_name;
    Descriptor m_file;
    bool m_isInPlace = false;
};

/// The file to be replaced; empty when there is none.
std::optional<struct stat> oldFile(const Folder& folder)
{
    struct stat info = {};
    if (::fstatat(folder.get(), folder.name().c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        require(errno == ENOENT);
        return std::nullopt;
    }
    if (S_ISDIR(info.st_mode))
        refuse(EISDIR);
    if (S_ISLNK(info.st_mode))
        throw Refusal{"Is a symbolic link"};
    if (!S_ISREG(info.st_mode))
        throw Refusal{"Is no regular file"};
    return info;
}

/// If the group cannot be kept, its rights must not go to another group.
void takeAfter(const struct stat& old, int descriptor)
{
    struct stat own = {};
    require(::fstat(descriptor, &own) == 0);
    const bool isSame = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
    const bool isKept = isSame || ::fchown(descriptor, old.st_uid, old.st_gid) == 0;
    require(::fchmod(descriptor, old.st_mode & (isKept ? 0777U : 0707U)) == 0);
}

void replaceIn(const Folder& folder, std::string_view content, std::optional<mode_t> mode)
{
    const auto old = oldFile(folder);
    constexpr mode_t kOwn = 0600;  // until it gets its final mode
    constexpr mode_t kAny = 0666;  // reduced by the process's umask
    Draft draft(folder, mode || old ? kOwn : kAny);
    if (mode)
        require(::fchmod(draft.get(), *mode) == 0);
    else if (old)
        takeAfter(*old, draft.get());
    draft.fill(content);
    draft.takePlace();
    folder.keep();
}

/// True for a pipe or device, which cannot be replaced.
bool isStream(const std::string& path)
{
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 && (S_ISFIFO(info.st_mode) || S_ISCHR(info.st_mode));
}

void writeThrough(const std::string& path, std::string_view content)
{
    const int opened = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (opened < 0 && errno == ENXIO)
        throw Refusal{"Nobody reads from it"};
    Descriptor stream(opened);
    struct stat info = {};
    require(::fstat(stream.get(), &info) == 0);
    if (!S_ISFIFO(info.st_mode) && !S_ISCHR(info.st_mode))
        throw Refusal{"Is another file than a moment ago"};
    require(::fcntl(stream.get(), F_SETFL, O_WRONLY) == 0);  // writing waits for a slow reader
    writeAll(stream.get(), content);
    stream.close();
}

template <typename Action>
void telling(const std::string& path, const std::string& accepted, const Action& action)
{
    try {
        action();
    } catch (const Refusal& refusal) {
        throw FileError(path + ": cannot be written: " + refusal.reason + "; accepted: " + accepted);
    }
}

}  // namespace

void replaceFile(const std::string& path, std::string_view content, const std::string& accepted,
                 std::optional<mode_t> mode)
{
    telling(path, accepted, [&] { replaceIn(Folder(path), content, mode); });
}

void writeOutput(const std::string& path, std::string_view content, const std::string& accepted)
{
    telling(path, accepted, [&] {
        if (isStream(path))
            writeThrough(path, content);
        else
            replaceIn(Folder(path), content, std::nullopt);
    });
}

bool isStandardOutput(std::string_view path)
{
    return path == "-" || path == "/dev/stdout" || path == "/dev/fd/1" || path == "/proc/self/fd/1";
}

}  // namespace support
