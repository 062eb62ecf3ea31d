#pragma once

#include <array>
#include <cstddef>

namespace arcrecord {

/// The functions of the client library, in the order of arc/ArcRilD.h.
enum class Function
{
    SetNotificationMethod,
    Open,
    Close,
    RegisterNotification,
    GetArcVersion,
    GetRilVersion,
    EnableLogging,
    AtcTunneling,
    CheckModuleSetting,
    StartGNSSraw,
    StopGNSS,
    ForceStopGNSS,
    ResetAGNSS,
    CurrentLSTA,
    EnableLSTA,
};
constexpr std::size_t kFunctions = 15;

const char* nameOf(Function function);

/// The client library that receives the calls: the one named by ARCRECORD_LIBRARY, or else the one that the application
/// would call without the recorder.
class RealLibrary
{
public:
    constexpr RealLibrary() = default;

    /// Looks for the library. The caller must hold no lock: loading a library waits for every thread that loads another
    /// one, and such a thread may be calling us.
    void find();
    /// Prints on stderr what find() could not find, if anything.
    void complain() const;
    /// Null when it is missing.
    template <typename Pointer>
    Pointer function(Function function) const
    {
        return reinterpret_cast<Pointer>(m_functions[static_cast<std::size_t>(function)]);
    }
    /// Null when nothing was found.
    const char* path() const { return m_path; }

private:
    void note(const char* format, ...) __attribute__((format(printf, 2, 3)));

    std::array<void*, kFunctions> m_functions{};
    std::array<char, 9000> m_missed{};  ///< room for a path of the greatest length, twice
    const char* m_path = nullptr;
};

}  // namespace arcrecord
