#pragma once

#include <array>
#include <cstddef>

namespace arcrecord {

/// The file that a recording goes to: the one named by ARCRECORD_FILE, or arcrecord.<pid>.jsonl in the working
/// directory. Uses no heap and has no destructor: threads of the application may still make calls while the process
/// exits.
///
/// Any failure is reported once on stderr and ends the recording; the application goes on.
class OutputFile
{
public:
    constexpr OutputFile() = default;

    /// Creates the file, or empties it. If another process is recording to that file, and always in the child of a
    /// fork, the process id is appended to the name.
    void open();
    bool isOpen() const { return m_descriptor >= 0; }
    /// When this returns, the system has the bytes, so they outlive the process.
    void write(const char* bytes, std::size_t count);
    /// To be called in the child of a fork, whose calls go into a separate file that open() opens.
    void leaveToParent();

private:
    bool nameBase();
    void openExclusively(bool& taken);
    void fail(const char* reason);

    static constexpr std::size_t kLongestName = 4000;
    std::array<char, kLongestName + 1> m_base{};  ///< from the environment, or the default
    std::array<char, kLongestName + 32> m_path{};
    int m_descriptor = -1;
    bool m_named = false;    ///< m_base is complete
    bool m_isGiven = false;  ///< by the environment
    bool m_ofChild = false;  ///< of a process that has named its file
};

}  // namespace arcrecord
