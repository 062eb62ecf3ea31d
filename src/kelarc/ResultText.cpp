#include "kelarc/ResultText.h"

#include <cstddef>
#include <iterator>
#include <string_view>

namespace kelarc {
namespace {

// Kept verbatim, "temporary" and "an TCP" included: log tools match on them.
constexpr std::string_view kResultTexts[] = {
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
static_assert(std::size(kResultTexts) == 40, "one text for each code from 0 to 39");

}  // namespace

std::string_view resultText(int code)
{
    const auto index = static_cast<unsigned>(code);  // negative codes become large ones
    return index < std::size(kResultTexts) ? kResultTexts[index] : "Unknown result";
}

}  // namespace kelarc
