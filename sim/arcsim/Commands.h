#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace arcsim::program {

constexpr const char* kVersion = "1.0";

/// A command line that is wrong as a whole, although every part of it is accepted.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The commands of the program. Each family of commands has a function
///
///     void addFamily(CLI::App& app, Commands& commands);
///
/// that adds them to the command line, and here what each of them does.
class Commands
{
public:
    using Run = std::function<int()>;

    Commands() = default;
    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    /// `run` is called once the whole command line has been accepted; returns the exit code. It may throw UsageError
    /// and owns what the command's options are stored in.
    void add(CLI::App& command, Run run);

    /// Runs the command that the parsed command line names; throws UsageError when it names none.
    int run() const;

private:
    Run m_chosen{};
};

/// Reads the command line and runs its command; `addFamilies` are called in their order, which is that of the help.
/// Returns the exit code. What is wrong goes to stderr.
int runProgram(int argc, char** argv, const std::vector<void (*)(CLI::App&, Commands&)>& addFamilies);

}  // namespace arcsim::program
