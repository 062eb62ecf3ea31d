#pragma once

#include "host/ModemHost.h"

#include <optional>
#include <string>

namespace arcsim {

/// The modem state that outlives the RIL daemon, kept in a file: a killed process leaves the file, the next process
/// continues from it.
struct Remembered
{
    std::optional<ModemHost::Memory> memory{};
    std::string refusal{};  ///< why an existing file is not trusted; empty otherwise
};

/// Gives neither memory nor refusal when there is no file, when the file belongs to another scenario, or when it was
/// written before the machine's last boot. A file is trusted only if a daemon of this user wrote it and nobody else
/// could have changed it.
Remembered readMemory(const std::string& file, const std::string& scenario);

/// The same for a file's content, whoever wrote the file.
Remembered parseMemory(const std::string& file, const std::string& text, const std::string& scenario);
/// The text that parseMemory() reads.
std::string memoryText(const std::string& scenario, const ModemHost::Memory& memory);

/// Writes the file unless it has this content already; `written` is its present content. Throws support::FileError.
void writeMemory(const std::string& file, const std::string& scenario, const ModemHost::Memory& memory,
                 std::string& written);

/// The memory file of one modem. Trouble with the file must not end the modem, so it is reported on standard error.
class MemoryKeeper
{
public:
    /// Without a file name nothing is kept.
    MemoryKeeper(std::string file, std::string scenario) : m_file(std::move(file)), m_scenario(std::move(scenario)) {}

    std::optional<ModemHost::Memory> recall() const;
    /// A failure is reported once; the next call tries again.
    void keep(const ModemHost::Memory& memory);
    /// Removes the file if it is ours, so that no later daemon trusts it.
    void forget();

private:
    const std::string m_file;
    const std::string m_scenario;
    std::string m_written{};
    std::string m_problem{};  ///< the last message
};

/// Makes `link` a symbolic link to `path`, replacing an existing link. Throws std::runtime_error.
void linkOutput(const std::string& link, const std::string& path);

}  // namespace arcsim
