#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace arcsim::program {

constexpr const char* kVersion = "1.0";

/// A command line whose parts are accepted one by one but do not fit together.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The commands of the program. Each family of commands has a function
///
///     void addFamily(CLI::App& app, Commands& commands);
///
/// that adds its commands to the command line, and their actions to this object.
class Commands
{
public:
    using Run = std::function<int()>;

    Commands() = default;
    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    /// `run` is called once the whole command line has been accepted, and returns the exit code. It may throw
    /// UsageError. It owns the variables that the command's options are stored in.
    void add(CLI::App& command, Run run);

    /// Runs the command that the parsed command line names; throws UsageError when it names none.
    int run() const;

private:
    Run m_chosen{};
};

/// Reads the command line and runs its command. `addFamilies` are called in the given order, which is also the order in
/// the help. Returns the exit code. Errors go to stderr.
int runProgram(int argc, char** argv, const std::vector<void (*)(CLI::App&, Commands&)>& addFamilies);

}  // namespace arcsim::program
