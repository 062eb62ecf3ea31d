#pragma once

// Texts of result codes, readable names of the public enumerations, and which LSTA numbers belong together. Header
// only: the code is compiled into the application.

#include "Types.h"

#include <cstddef>
#include <iterator>
#include <optional>
#include <string_view>

namespace kelarc {

/// The result codes that callbacks answer, by name: `code == kelarc::result::NO_CONNECTION`.
namespace result {

enum : int
{
    SUCCESS = 0,
    NOT_OPENED,
    TIMEOUT,
    MODULE_OFF,
    SIM_MISSING,
    SIM_PIN_REQUIRED,
    SIM_PUK_REQUIRED,
    SIM_PIN2_REQUIRED,
    SIM_PUK2_REQUIRED,
    SIM_BUSY,
    SIM_ACCESS_FAILED,
    WRONG_PIN,
    NO_NETWORK,
    WRONG_PARAMETER,
    MISSING_PARAMETER,
    TEMPORARILY_UNAVAILABLE,
    NOT_FOUND,
    NO_PDP_CONTEXT,
    DATA_SERVICE_CLOSED,
    WRONG_SERVICE,
    TEXT_TOO_LONG,
    DENIED,
    UNSUPPORTED_CHARACTERS,
    GNSS_INACTIVE,
    NOT_SUPPORTED,
    OUT_OF_MEMORY,
    CANCELLED,
    CALL_BARRED,
    NETWORK_REJECTED,
    MEMORY_FULL,
    USER_BUSY,
    NO_CONNECTION,
    GENERIC_ERROR,
    ANSWER_CUT,
    VERSION_MISMATCH,
    DATA_CONNECTION_PENDING,
    APN_ACTIVE,
    ILLEGAL_MOBILE,
    NOT_ALLOWED,
    DAEMON_BUSY,
};

/// The name of a code and its text in the log.
struct Words
{
    const char* name;
    std::string_view text;
};

// The texts are published, "temporary" and "an TCP" included: log tools match on them.
inline constexpr Words kWords[] = {
    {"SUCCESS", "Command has been executed successfully"},
    {"NOT_OPENED", "API called before library has been opened with ARC_Open()"},
    {"TIMEOUT", "Timeout while waiting for module response"},
    {"MODULE_OFF", "Command cannot be executed because the module is off or in power state transition"},
    {"SIM_MISSING", "SIM card is missing or defective"},
    {"SIM_PIN_REQUIRED", "SIM PIN is required for this operation"},
    {"SIM_PUK_REQUIRED", "SIM PUK is required to unblock this SIM card"},
    {"SIM_PIN2_REQUIRED", "SIM PIN2 is required for this operation"},
    {"SIM_PUK2_REQUIRED", "SIM PUK2 is required to unblock the SIM PIN2"},
    {"SIM_BUSY", "SIM is currently busy"},
    {"SIM_ACCESS_FAILED", "SIM access failed, might be caused by a defective SIM card"},
    {"WRONG_PIN", "The PIN/PUK provided is incorrect"},
    {"NO_NETWORK", "No network service available at the moment"},
    {"WRONG_PARAMETER", "A parameter is set incorrectly or is pointing to a non-existing index"},
    {"MISSING_PARAMETER", "A mandatory API parameter hasn't been provided"},
    {"TEMPORARILY_UNAVAILABLE", "This API is temporary not available"},
    {"NOT_FOUND", "The requested information cannot be found"},
    {"NO_PDP_CONTEXT", "The PDP context for the requested data service is currently not active"},
    {"DATA_SERVICE_CLOSED", "The data service hasn't been opened, yet"},
    {"WRONG_SERVICE",
     "The called API is not supported by the service (e.g. calling an TCP write request for an UDP service)"},
    {"TEXT_TOO_LONG", "A string parameter provided is too long to be handled"},
    {"DENIED", "A requested service has been denied"},
    {"UNSUPPORTED_CHARACTERS", "A string parameter contains unsupported characters"},
    {"GNSS_INACTIVE", "The GNSS location has been requested, but GNSS is not active"},
    {"NOT_SUPPORTED", "This feature is not supported by the module in use"},
    {"OUT_OF_MEMORY", "Allocation of memory failed"},
    {"CANCELLED", "A request got cancelled (e.g. by ARC_AbortCommand())"},
    {"CALL_BARRED", "Call or SMS is barred (FDN restriction)"},
    {"NETWORK_REJECTED", "The network rejected a request"},
    {"MEMORY_FULL", "Memory full"},
    {"USER_BUSY", "User or called party busy"},
    {"NO_CONNECTION", "Error in connection between library and RIL daemon or RIL daemon not running"},
    {"GENERIC_ERROR", "Generic error, no more error information is available"},
    {"ANSWER_CUT", "Command succeeded, but output didn't fit completely in provided output buffer"},
    {"VERSION_MISMATCH", "Version of ARC library is not supported by RIL daemon"},
    {"DATA_CONNECTION_PENDING", "There is a pending call of ARC_StartDataConnection()"},
    {"APN_ACTIVE", "The APN is already active"},
    {"ILLEGAL_MOBILE", "GPRS: Illegal MS or ME"},
    {"NOT_ALLOWED", "Command not allowed"},
    {"DAEMON_BUSY", "Daemon busy"},
};
static_assert(std::size(kWords) == DAEMON_BUSY + 1, "one row for each code, in their order");

/// The name of a code, as above; "UNKNOWN" for one outside 0 to 39.
constexpr const char* nameOf(int code)
{
    const auto index = static_cast<unsigned>(code);  // negative codes become large ones
    return index < std::size(kWords) ? kWords[index].name : "UNKNOWN";
}

/// The text of a code in the log; "Unknown result" for one outside 0 to 39. Ended by a zero.
constexpr std::string_view textOf(int code)
{
    const auto index = static_cast<unsigned>(code);
    return index < std::size(kWords) ? kWords[index].text : "Unknown result";
}

}  // namespace result

// Texts have static duration. A value without a name of its own is "unknown", like the enumerators UNKNOWN.

constexpr const char* to_string(CPU_POWER power)
{
    return power == CPU_POWER::STANDARD ? "standard" : power == CPU_POWER::MAXIMUM ? "maximum" : "unknown";
}

constexpr const char* to_string(RESULT result)
{
    return result == RESULT::OFF ? "off" : result == RESULT::ON ? "on" : "unknown";
}

/// Events are named by the modem's number: "event 73", whatever the value of the enumerator.
constexpr const char* to_string(NOTIFY_ID id)
{
    switch (id) {
    case NOTIFY_ID::EVENT_22:
        return "event 22";
    case NOTIFY_ID::EVENT_72:
        return "event 72";
    case NOTIFY_ID::EVENT_73:
        return "event 73";
    case NOTIFY_ID::EVENT_74:
        return "event 74";
    case NOTIFY_ID::EVENT_75:
        return "event 75";
    case NOTIFY_ID::RAW_GNSS_START_ENDED:
        return "raw GNSS start ended";
    }
    return "unknown";
}

namespace gnss {

constexpr const char* to_string(SYSTEM system)
{
    switch (system) {
    case SYSTEM::GLONASS:
        return "GLONASS";
    case SYSTEM::GALILEO:
        return "Galileo";
    case SYSTEM::BEIDOU:
        return "BeiDou";
    case SYSTEM::QZSS:
        return "QZSS";
    }
    return "unknown";
}

constexpr const char* to_string(FORMAT format)
{
    return format == FORMAT::NMEA ? "NMEA" : format == FORMAT::RAW ? "raw" : "unknown";
}

constexpr const char* to_string(FREQUENCY frequency)
{
    switch (frequency) {
    case FREQUENCY::EVERY_1000_MS:
        return "1000 ms";
    case FREQUENCY::EVERY_500_MS:
        return "500 ms";
    case FREQUENCY::EVERY_200_MS:
        return "200 ms";
    case FREQUENCY::EVERY_100_MS:
        return "100 ms";
    case FREQUENCY::UNKNOWN:
        break;
    }
    return "unknown";
}

}  // namespace gnss

namespace lsta {

/// One satellite system: its number in requests, its number in notifications, and its name.
struct System
{
    TECH tech;
    TYPE type;
    const char* name;
};

inline constexpr System kSystems[] = {
    {TECH::GPS, TYPE::GPS, "GPS"},
    {TECH::GLONASS, TYPE::GLONASS, "GLONASS"},
    {TECH::BEIDOU, TYPE::BEIDOU, "BeiDou"},
    {TECH::GALILEO, TYPE::GALILEO, "Galileo"},
};

/// Which TYPE the notifications of a system carry; empty for a value that is no system.
constexpr std::optional<TYPE> typeOf(TECH tech)
{
    for (const System& system : kSystems)
        if (system.tech == tech)
            return system.type;
    return std::nullopt;
}

/// Which TECH to ask for the system of a notification; empty for a value that is no system.
constexpr std::optional<TECH> techOf(TYPE type)
{
    for (const System& system : kSystems)
        if (system.type == type)
            return system.tech;
    return std::nullopt;
}

constexpr const char* to_string(TECH tech)
{
    for (const System& system : kSystems)
        if (system.tech == tech)
            return system.name;
    return "unknown";
}

constexpr const char* to_string(TYPE type)
{
    for (const System& system : kSystems)
        if (system.type == type)
            return system.name;
    return "unknown";
}

}  // namespace lsta
}  // namespace kelarc
