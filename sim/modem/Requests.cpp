#include "modem/Requests.h"

#include "receiver/Noise.h"

namespace arcsim::modem {

std::optional<std::size_t> findRequest(std::string_view name)
{
    for (std::size_t request = 0; request < kRequests.size(); ++request)
        if (kRequests[request].name == name)
            return request;
    return std::nullopt;
}

std::chrono::milliseconds realisticLatency(std::uint64_t seed, std::size_t request, unsigned number)
{
    const RequestKind& kind = kRequests.at(request);
    const double choices = kind.longestMs - kind.shortestMs + 1;
    return std::chrono::milliseconds(kind.shortestMs + static_cast<int>(noise({seed, request, number}) * choices));
}

}  // namespace arcsim::modem
