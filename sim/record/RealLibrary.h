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

/// The client library that calls are passed on to: the one named by ARCRECORD_LIBRARY, or else the one that the
/// application would have called without the recorder before it.
class RealLibrary
{
public:
    constexpr RealLibrary() = default;

    /// Looks for the library; says once on stderr what is missing.
    void find();
    /// Null when it is missing.
    template <typename Pointer>
    Pointer function(Function function) const
    {
        return reinterpret_cast<Pointer>(m_functions[static_cast<std::size_t>(function)]);
    }
    /// Null when nothing was found.
    const char* path() const { return m_path; }

private:
    std::array<void*, kFunctions> m_functions{};
    const char* m_path = nullptr;
};

}  // namespace arcrecord
