#pragma once

#include <array>
#include <cstddef>

namespace arcrecord {

/// The file that a recording goes to: the one named by ARCRECORD_FILE, or arcrecord.<pid>.jsonl in the working
/// directory. Without memory of its own on the heap and without a destructor: threads of the application may still make
/// calls while the process exits.
///
/// Whatever goes wrong is said once on stderr and ends the recording; the application goes on.
class OutputFile
{
public:
    constexpr OutputFile() = default;

    /// Creates the file, or empties it. A file that another process is recording to is left to that one; then, as
    /// always in the child of a fork, the name gets the process's number as a further ending.
    void open();
    bool isOpen() const { return m_descriptor >= 0; }
    /// The bytes are with the system when this returns, so they outlive the process.
    void write(const char* bytes, std::size_t count);
    /// In the child of a fork: its own calls go into a file of its own, which open() opens.
    void leaveToParent();

private:
    bool nameBase();
    void openExclusively(bool& taken);
    void fail(const char* reason);

    static constexpr std::size_t kLongestName = 4000;
    std::array<char, kLongestName + 1> m_base{};  ///< as the environment says, or the default
    std::array<char, kLongestName + 32> m_path{};
    int m_descriptor = -1;
    bool m_named = false;    ///< m_base is complete
    bool m_isGiven = false;  ///< by the environment
    bool m_ofChild = false;  ///< of a process that has named its file
};

}  // namespace arcrecord
