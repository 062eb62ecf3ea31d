#pragma once

// Files that are read or written as a whole. Whatever kind of file a name stands for, opening it never waits, and no
// function fills the memory or leaves half a file.

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace support {

/// A file that cannot be read or written. The text names the path, the reason and the kind of file that is accepted.
class FileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Conditions for reading a file.
struct ReadRules
{
    std::size_t largest = 0;   ///< bytes
    std::string accepted{};    ///< the accepted argument, for errors: "the name of a scenario file"
    bool mayBeStream = false;  ///< also a pipe, a terminal or another character device
    /// Only this process's user can have written the file: no symbolic link, no file that others own or may write to.
    /// For files that a program trusts although the user did not name them.
    bool mustBeOwn = false;
};

/// A file that is read from its beginning to its end. Every function throws FileError.
class InputFile
{
public:
    /// By a name that the user gave: a pipe without a writer is empty; reading waits for a pipe with a silent writer.
    InputFile(const std::string& path, const ReadRules& rules);
    /// An open descriptor, which stays open; `name` is for the errors.
    InputFile(int descriptor, const std::string& name, const ReadRules& rules);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Reads at most `size` bytes; 0 at the end. More bytes than `largest` are an error, whatever size the file
    /// reports.
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

/// The whole content of a file.
std::string readFile(const std::string& path, const ReadRules& rules);
/// The whole content of standard input.
std::string readStandardInput(const ReadRules& rules);

/// Replaces or creates the file at `path` with this content: completely stored, or not at all. The content is written
/// to a file with an unpredictable name in the same folder. That file takes the place of the old one when the last byte
/// is stored. Only a storage error after that is reported although the new file is in place.
///
/// The mode is the given one; otherwise that of the old file, whose owner and group are kept if that is allowed, or
/// that of any new file. A `path` that exists and is not a regular file, symbolic links included, is refused. Throws
/// FileError; `accepted` names the accepted argument.
void replaceFile(const std::string& path, std::string_view content, const std::string& accepted,
                 std::optional<mode_t> mode = std::nullopt);

/// For a file that the user names: writes into a pipe or a character device, and replaces any other file as
/// replaceFile() does. A pipe without a reader is refused.
void writeOutput(const std::string& path, std::string_view content, const std::string& accepted);

/// "-", "/dev/stdout" and its other names.
bool isStandardOutput(std::string_view path);

/// The value of an environment variable that names a file; empty when there is none, and in a program that runs with
/// more rights than its user has.
std::string fileOfEnvironment(const char* variable);

}  // namespace support
