#include "arcsim/SocketPath.h"

#include "arcsim/Commands.h"

#include <cstdlib>
#include <sys/un.h>
#include <unistd.h>

namespace arcsim::program {

namespace {

constexpr std::size_t kLongestPath = sizeof(sockaddr_un::sun_path) - 1;

std::string environment(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string checked(const std::string& path, const std::string& origin)
{
    if (path.size() > kLongestPath)
        throw UsageError(origin + ": '" + path + "' has " + std::to_string(path.size()) +
                         " bytes; accepted: the path of a socket, of at most " + std::to_string(kLongestPath) +
                         " bytes");
    return path;
}

}  // namespace

std::string socketPath(const std::string& given)
{
    if (!given.empty())
        return checked(given, "--socket");
    const std::string ofVariable = environment("ARCSIM_SOCKET");
    if (!ofVariable.empty())
        return checked(ofVariable, "ARCSIM_SOCKET");
    const std::string runtimeFolder = environment("XDG_RUNTIME_DIR");
    if (!runtimeFolder.empty())
        return checked(runtimeFolder + "/arcsim.sock", "XDG_RUNTIME_DIR");
    return "/tmp/arcsim-" + std::to_string(::getuid()) + ".sock";
}

}  // namespace arcsim::program
