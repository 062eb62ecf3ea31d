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

/// A message that is none. The text names the value and what is accepted.
class ProtocolError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

using Json = nlohmann::ordered_json;

/// One message a line; everything else is refused with ProtocolError.
Json messageOf(std::string_view line);
/// With the line's end.
std::string lineOf(const Json& message);

/// What an application's side says first; after a lost connection with what it had.
struct Hello
{
    std::string name{};
    int pid = 0;
    bool isOpen = false;
    bool hasHandler = false;
};
Json helloMessage(const Hello& hello);
Hello helloOf(const Json& message);

/// The number that an answer is told from another by.
std::int64_t idOf(const Json& message);

/// Which of the application's threads makes a call; 0 when the message does not say so.
int threadOf(const Json& message);

Json argumentsOf(const Request& request);
/// From the members "call" and "args".
Request requestOf(const Json& message);
Json callMessage(std::int64_t id, const Request& request, unsigned thread);

/// The outputs under the names of their parameters; only what is to be written.
Json outputsOf(Function function, const modem::Reply& reply);
Json answerMessage(std::int64_t id, Function function, const modem::Reply& reply);
/// From the members "code" and "out".
modem::Reply replyOf(Function function, const Json& message);

struct EventMessage
{
    int id = 0;
    std::vector<unsigned char> payload{};
};
Json eventMessage(const EventMessage& event);
EventMessage eventOf(const Json& message);

}  // namespace arcsim
