#include "scenario/FileText.h"

#include "scenario/JsonText.h"
#include "scenario/ScenarioError.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace arcsim {

namespace {

class OpenFile
{
public:
    // Without waiting: the name may be that of a pipe nobody writes to.
    explicit OpenFile(const std::string& name) : m_descriptor(open(name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
    ~OpenFile()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

}  // namespace

std::string contentOf(const std::string& name, const std::string& accepted)
{
    const auto fail = [&](const std::string& why) { throw ScenarioError(name + ": " + why); };
    const auto cannot = [&](const char* why) {
        fail(std::string("cannot be read: ") + why + "; accepted: " + accepted);
    };
    const OpenFile file(name);
    struct stat info = {};
    if (file.descriptor() < 0 || fstat(file.descriptor(), &info) != 0)
        cannot(std::strerror(errno));
    if (!S_ISREG(info.st_mode))
        cannot(S_ISDIR(info.st_mode) ? "Is a directory" : "Is no regular file");
    std::string content;
    std::array<char, 65536> part{};
    while (content.size() <= kLargestFile) {
        const ssize_t count = read(file.descriptor(), part.data(), part.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            cannot(std::strerror(errno));
        if (count == 0)
            return content;
        content.append(part.data(), static_cast<std::size_t>(count));
    }
    fail("a larger file is not accepted; accepted: at most " + std::to_string(kLargestFile) + " bytes");
    return {};
}

}  // namespace arcsim
