#pragma once

// A folder of its own for a test, and files as they are on disk.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace files_test {

class Folder
{
public:
    Folder() { ::mkdtemp(m_path.data()); }
    ~Folder() { std::filesystem::remove_all(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string path(const std::string& name) const { return m_path + "/" + name; }
    std::string write(const std::string& name, const std::string& content) const
    {
        std::ofstream(path(name)) << content;
        return path(name);
    }
    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_path))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::string m_path = (std::filesystem::temp_directory_path() / "files_test.XXXXXX").string();
};

inline std::string contentOf(const std::string& path)
{
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

inline mode_t modeOf(const std::string& path)
{
    struct stat info = {};
    return ::lstat(path.c_str(), &info) == 0 ? info.st_mode & 07777U : 0;
}

}  // namespace files_test
