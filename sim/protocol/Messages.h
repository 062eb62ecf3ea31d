#pragma once

#include "host/Request.h"
#include "modem/Reply.h"

#include <nlohmann/json.hpp>

#include <cstdint>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace arcsim {

/// An invalid message. The text names the value and what is accepted.
class ProtocolError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

using Json = nlohmann::ordered_json;

/// Reads the one message of a line; anything else is refused with ProtocolError.
Json messageOf(std::string_view line);
/// The message as a line, with its line end.
std::string lineOf(const Json& message);

/// The first message of an application's side; after a lost connection it holds the earlier state.
struct Hello
{
    std::string name{};
    int pid = 0;
    bool isOpen = false;
    bool hasHandler = false;
};
Json helloMessage(const Hello& hello);
Hello helloOf(const Json& message);

/// The number that links an answer to its request.
std::int64_t idOf(const Json& message);

/// The application's thread that makes the call; 0 when the message does not name one.
int threadOf(const Json& message);

Json argumentsOf(const Request& request);
/// Reads a request from the members "call" and "args".
Request requestOf(const Json& message);
Json callMessage(std::int64_t id, const Request& request, unsigned thread);

/// The outputs under their parameters' names; only those that are to be written.
Json outputsOf(Function function, const modem::Reply& reply);
Json answerMessage(std::int64_t id, Function function, const modem::Reply& reply);
/// Reads a reply from the members "code" and "out".
modem::Reply replyOf(Function function, const Json& message);

struct EventMessage
{
    int id = 0;
    std::vector<unsigned char> payload{};
};
Json eventMessage(const EventMessage& event);
EventMessage eventOf(const Json& message);

}  // namespace arcsim
