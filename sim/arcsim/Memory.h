#pragma once

#include "host/ModemHost.h"

#include <optional>
#include <string>

namespace arcsim {

/// What a modem keeps while its RIL daemon is dead, in a file: a process that is killed leaves it, the next one goes on
/// with it.
struct Remembered
{
    std::optional<ModemHost::Memory> memory{};
    std::string refusal{};  ///< why what is there is not believed; empty otherwise
};

/// Neither memory nor refusal when there is no file, and when it belongs to another scenario or to the time before the
/// machine's start. Only a file is believed that a daemon of this user has written and that nobody could change since.
Remembered readMemory(const std::string& file, const std::string& scenario);

/// The same of a file's content, whoever has written the file.
Remembered parseMemory(const std::string& file, const std::string& text, const std::string& scenario);
/// What parseMemory() reads.
std::string memoryText(const std::string& scenario, const ModemHost::Memory& memory);

/// Writes the file unless it says so already; `written` is what it says. Throws support::FileError.
void writeMemory(const std::string& file, const std::string& scenario, const ModemHost::Memory& memory,
                 std::string& written);

/// The memory of one modem, which must not end for what is wrong with its file: that is said on standard error.
class MemoryKeeper
{
public:
    /// Without a file nothing is kept.
    MemoryKeeper(std::string file, std::string scenario) : m_file(std::move(file)), m_scenario(std::move(scenario)) {}

    std::optional<ModemHost::Memory> recall() const;
    /// What goes wrong is said once, and tried again the next time.
    void keep(const ModemHost::Memory& memory);
    /// Removes the file, if it is ours: what a daemon after this one would believe.
    void forget();

private:
    const std::string m_file;
    const std::string m_scenario;
    std::string m_written{};
    std::string m_problem{};  ///< as said last
};

/// Makes `link` a symbolic link to `path`, in the place of one that was there. Throws std::runtime_error.
void linkOutput(const std::string& link, const std::string& path);

}  // namespace arcsim
