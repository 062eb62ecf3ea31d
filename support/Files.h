#pragma once

// Files that are read or written as a whole. Whatever a name may stand for, nothing here waits for ever, fills the
// memory, or leaves half a file.

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace support {

/// What cannot be read or written. The text names the path, the reason and what is accepted.
class FileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// What a file has to be to be read.
struct ReadRules
{
    std::size_t largest = 0;   ///< bytes
    std::string accepted{};    ///< what should have been named, for errors: "the name of a scenario file"
    bool mayBeStream = false;  ///< also a pipe, a terminal or another character device
    /// Written by nobody but the user of this process: not by way of a symbolic link, not in a file that others own or
    /// may write to. For what a program believes without being told its name.
    bool mustBeOwn = false;
};

/// A file that is read from its beginning to its end. Every function throws FileError.
class InputFile
{
public:
    /// A name that others gave: a pipe without a writer is empty, a silent one is waited for.
    InputFile(const std::string& path, const ReadRules& rules);
    /// An open descriptor, which stays open; `name` is for the errors.
    InputFile(int descriptor, const std::string& name, const ReadRules& rules);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// At most `size` bytes; 0 at the end. A file that has more than the largest number of bytes is an error, whatever
    /// it says of its size.
    std::size_t read(char* buffer, std::size_t size);

private:
    void requireAccepted() const;
    [[noreturn]] void fail(const std::string& reason) const;

    const std::string m_name;
    const ReadRules m_rules;
    const int m_descriptor;
    const bool m_isOurs;
    std::size_t m_count = 0;  ///< bytes that were read
};

/// All of a file.
std::string readFile(const std::string& path, const ReadRules& rules);
/// All that comes from standard input.
std::string readStandardInput(const ReadRules& rules);

/// Puts a file with this content in the place of `path`, or a new one: whole, with the system's storage, or not at all.
/// It is written beside the old one, under a name that nobody can foresee, and takes its place when the last byte is
/// known to be stored; only an error of the storage after that is told of a file that is there.
///
/// The mode is the given one; without it the old file's, whose owner and group are kept if that is allowed, or that of
/// any new file. What is there and no regular file, symbolic links included, is refused. Throws FileError; `accepted`
/// says what should have been named.
void replaceFile(const std::string& path, std::string_view content, const std::string& accepted,
                 std::optional<mode_t> mode = std::nullopt);

/// For a file that people name: what is written to a pipe or a character device goes through it, everything else is
/// replaced as by replaceFile(). A pipe that nobody reads from is refused.
void writeOutput(const std::string& path, std::string_view content, const std::string& accepted);

/// "-", "/dev/stdout" and its other names.
bool isStandardOutput(std::string_view path);

/// The value of an environment variable that names a file; empty when there is none, and in a program that runs with
/// more rights than its user has.
std::string fileOfEnvironment(const char* variable);

}  // namespace support
