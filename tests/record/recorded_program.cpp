#include "record/recorded_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <link.h>
#include <regex>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace record_test {

namespace {

constexpr std::chrono::seconds kLimit{90};

/// Looks again and again until it holds.
template <typename Condition>
bool within(const Condition& condition)
{
    const auto end = std::chrono::steady_clock::now() + kLimit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace

RecordedProgram::RecordedProgram()
{
    std::string name = (std::filesystem::path(testing::TempDir()) / "record.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("no folder " + name);
    m_folder = name;
}

RecordedProgram::~RecordedProgram()
{
    if (m_pid > 0)
        kill();
    std::filesystem::remove_all(m_folder);
}

void RecordedProgram::start(const std::string& program, const std::string& argument)
{
    std::vector<std::string> arguments{program};
    if (!argument.empty())
        arguments.push_back(argument);
    std::vector<std::string> environment{"TSAN_OPTIONS=die_after_fork=0"};
    for (const auto& [name, value] : m_environment)
        environment.push_back(name + "=" + value);
    const auto pointers = [](std::vector<std::string>& texts) {
        std::vector<char*> all;
        for (std::string& text : texts)
            all.push_back(text.data());
        all.push_back(nullptr);
        return all;
    };
    const std::vector<char*> argv = pointers(arguments);
    const std::vector<char*> envp = pointers(environment);
    m_pid = fork();
    ASSERT_GE(m_pid, 0);
    if (m_pid > 0)
        return;
    if (chdir(m_folder.c_str()) != 0)
        _exit(97);
    dup2(open("stdout", O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
    dup2(open("stderr", O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
    execve(program.c_str(), argv.data(), envp.data());
    _exit(96);
}

void RecordedProgram::expectEnd(int expected)
{
    int status = 0;
    pid_t ended = 0;
    EXPECT_TRUE(within([&] { return (ended = waitpid(m_pid, &status, WNOHANG)) != 0; })) << "still running";
    if (ended != m_pid)
        return kill();
    EXPECT_EQ(status, expected) << errors();
    m_pid = -1;
}

void RecordedProgram::kill()
{
    ::kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
    m_pid = -1;
}

std::string RecordedProgram::content(const std::string& file) const
{
    std::ifstream stream(std::filesystem::path(m_folder) / file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::string RecordedProgram::header(const std::string& file) const
{
    const std::string text = content(file);
    return text.substr(0, text.find('\n'));
}

std::vector<std::string> RecordedProgram::lines(const std::string& file) const
{
    std::vector<std::string> all;
    std::istringstream text(content(file));
    for (std::string line; std::getline(text, line) && !text.eof();)
        all.push_back(line);
    if (!all.empty() && all.front().rfind("{\"recording\"", 0) == 0)
        all.erase(all.begin());
    return all;
}

std::vector<std::string> RecordedProgram::timelessLines(const std::string& file) const
{
    static const std::regex times(R"re("(us|tookUs)":[0-9]+)re");
    std::vector<std::string> all = lines(file);
    for (std::string& line : all)
        if (line.size() < 2000)
            line = std::regex_replace(line, times, "\"$1\":0");
    return all;
}

void RecordedProgram::waitForLines(std::size_t count) const
{
    const auto present = [&] {
        const std::string text = content();
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) > count;
    };
    EXPECT_TRUE(within(present)) << content();
}

std::string sanitizerLibrary()
{
    std::string found;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* result) {
            for (const char* name : {"/libasan.", "/libtsan.", "/libclang_rt.asan", "/libclang_rt.tsan"})
                if (std::strstr(info->dlpi_name, name) != nullptr)
                    *static_cast<std::string*>(result) = info->dlpi_name;
            return 0;
        },
        &found);
    return found;
}

}  // namespace record_test
