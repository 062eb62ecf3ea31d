#include "arcsim/SocketPath.h"

#include "arcsim/Commands.h"
#include "support/Files.h"

#include <sys/un.h>
#include <unistd.h>

namespace arcsim::program {

namespace {

constexpr std::size_t kLongestPath = sizeof(sockaddr_un::sun_path) - 1;

std::string checked(const std::string& path, const std::string& origin)
{
    if (path.size() > kLongestPath)
        throw UsageError(origin + ": '" + path + "' has " + std::to_string(path.size()) +
                         " bytes; accepted: the path of a socket, of at most " + std::to_string(kLongestPath) +
                         " bytes");
    return path;
}

std::string defaultPath()
{
    const std::string runtimeFolder = support::fileOfEnvironment("XDG_RUNTIME_DIR");
    if (!runtimeFolder.empty())
        return checked(runtimeFolder + "/arcsim.sock", "XDG_RUNTIME_DIR");
    return "/tmp/arcsim-" + std::to_string(::getuid()) + ".sock";
}

}  // namespace

SocketPath socketPath(const std::string& given)
{
    if (!given.empty())
        return {checked(given, "--socket"), true};
    const std::string ofVariable = support::fileOfEnvironment("ARCSIM_SOCKET");
    if (!ofVariable.empty())
        return {checked(ofVariable, "ARCSIM_SOCKET"), true};
    return {defaultPath(), false};
}

}  // namespace arcsim::program
