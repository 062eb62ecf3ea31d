#include "support/ResultText.h"

namespace support {
namespace {

// The tests' own copy, so that an error in the library's table is noticed.
constexpr const char* kTexts[kResultTexts] = {
    "Command has been executed successfully",
    "API called before library has been opened with ARC_Open()",
    "Timeout while waiting for module response",
    "Command cannot be executed because the module is off or in power state transition",
    "SIM card is missing or defective",
    "SIM PIN is required for this operation",
    "SIM PUK is required to unblock this SIM card",
    "SIM PIN2 is required for this operation",
    "SIM PUK2 is required to unblock the SIM PIN2",
    "SIM is currently busy",
    "SIM access failed, might be caused by a defective SIM card",
    "The PIN/PUK provided is incorrect",
    "No network service available at the moment",
    "A parameter is set incorrectly or is pointing to a non-existing index",
    "A mandatory API parameter hasn't been provided",
    "This API is temporary not available",
    "The requested information cannot be found",
    "The PDP context for the requested data service is currently not active",
    "The data service hasn't been opened, yet",
    "The called API is not supported by the service (e.g. calling an TCP write request for an UDP service)",
    "A string parameter provided is too long to be handled",
    "A requested service has been denied",
    "A string parameter contains unsupported characters",
    "The GNSS location has been requested, but GNSS is not active",
    "This feature is not supported by the module in use",
    "Allocation of memory failed",
    "A request got cancelled (e.g. by ARC_AbortCommand())",
    "Call or SMS is barred (FDN restriction)",
    "The network rejected a request",
    "Memory full",
    "User or called party busy",
    "Error in connection between library and RIL daemon or RIL daemon not running",
    "Generic error, no more error information is available",
    "Command succeeded, but output didn't fit completely in provided output buffer",
    "Version of ARC library is not supported by RIL daemon",
    "There is a pending call of ARC_StartDataConnection()",
    "The APN is already active",
    "GPRS: Illegal MS or ME",
    "Command not allowed",
    "Daemon busy",
};

int levelOf(int code)
{
    if (code == 0)
        return 2;
    return code == 15 || code == 26 ? 3 : 4;
}

}  // namespace

std::string resultText(int code)
{
    return code >= 0 && code < kResultTexts ? kTexts[code] : "Unknown result";
}

std::string resultLine(int retriesLeft, const std::string& call, int code)
{
    return std::to_string(levelOf(code)) + " KelArc::logArcResult.1224: [" + std::to_string(retriesLeft) + "] " + call +
           " took %u ms: " + resultText(code) + " (" + std::to_string(code) + ")";
}

std::string gaveUpLine(int level, unsigned line, const std::string& call)
{
    return std::to_string(level) + " KelArc::operator()." + std::to_string(line) + ": Could not call successfully '" +
           call + "' after 15 retries";
}

}  // namespace support
