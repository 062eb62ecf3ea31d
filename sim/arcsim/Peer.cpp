#include "arcsim/Peer.h"

#include "protocol/Text.h"

namespace arcsim {

bool Peer::attempt(const std::function<void()>& action)
{
    try {
        action();
        return true;
    } catch (const ProtocolError& error) {
        refuse(error.what());
    } catch (const std::exception& error) {
        refuse("a line could not be dealt with: " + charactersOf(error.what()));
    }
    return false;
}

void Peer::refuse(const std::string& error)
{
    send({{"error", error}});
    close();
}

LineTaken takeLine(Peer& peer, LineBuffer& lines, PeerHandler& handler)
{
    bool hasLine = false;
    const bool isAccepted = peer.attempt([&] {
        const auto line = lines.take();
        hasLine = line.has_value();
        if (line ? line->size() > kLongestLine : lines.isOverlong())
            throw ProtocolError("a line is longer than " + std::to_string(kLongestLine) + " bytes");
        if (line)
            handler.message(peer, messageOf(*line));
    });
    return !isAccepted ? LineTaken::refused : hasLine ? LineTaken::accepted : LineTaken::none;
}

}  // namespace arcsim
