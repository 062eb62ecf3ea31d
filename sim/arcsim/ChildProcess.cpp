#include "arcsim/ChildProcess.h"

#include <cerrno>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace arcsim::program {

namespace {

std::vector<std::string> changed(char** environment, const std::map<std::string, std::string>& changes)
{
    std::vector<std::string> variables;
    for (; *environment != nullptr; ++environment) {
        const std::string variable = *environment;
        if (changes.count(variable.substr(0, variable.find('='))) == 0)
            variables.push_back(variable);
    }
    for (const auto& [name, value] : changes)
        if (!value.empty())
            variables.push_back(name + '=' + value);
    return variables;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

pid_t startProcess(const std::vector<std::string>& command, const std::map<std::string, std::string>& environment)
{
    std::vector<std::string> words = command;
    std::vector<std::string> variables = changed(environ, environment);
    pid_t process = 0;
    const int error = ::posix_spawnp(&process, words.front().c_str(), nullptr, nullptr, pointersTo(words).data(),
                                     pointersTo(variables).data());
    if (error != 0)
        throw std::system_error(error, std::generic_category(), "cannot start '" + command.front() + "'");
    return process;
}

int exitCodeOf(int waitStatus)
{
    constexpr int kSignalled = 128;
    return WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : kSignalled + WTERMSIG(waitStatus);
}

}  // namespace arcsim::program
