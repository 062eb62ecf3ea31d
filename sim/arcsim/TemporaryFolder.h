#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace arcsim::program {

/// A temporary folder that is removed with the object.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        m_path = (std::filesystem::temp_directory_path() / "arcsim.XXXXXX").string();
        if (::mkdtemp(m_path.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), "cannot make a folder '" + m_path + "'");
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

}  // namespace arcsim::program
