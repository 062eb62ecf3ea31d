// Any line on the daemon's socket is a message that reads back as written, or a ProtocolError says why not. Any other
// exception ends the run.

#include "fuzz/Finding.h"
#include "protocol/LineBuffer.h"
#include "protocol/Messages.h"

#include <algorithm>
#include <cstdint>

namespace {

using arcsim::Json;
using arcsim::ProtocolError;

/// What a message means to either side, if it means anything.
void interpret(const Json& message)
{
    const auto tried = [](const auto& read) {
        try {
            read();
        } catch (const ProtocolError& error) {
            if (std::string(error.what()).empty())
                fuzz::finding("a refusal without a word");
        }
    };
    tried([&] { arcsim::idOf(message); });
    tried([&] {
        if (message.contains("hello"))
            arcsim::helloOf(arcsim::helloMessage(arcsim::helloOf(message)));
    });
    tried([&] { arcsim::eventOf(arcsim::eventMessage(arcsim::eventOf(message))); });
    tried([&] {
        const arcsim::Request request = arcsim::requestOf(message);
        const Json written = arcsim::callMessage(1, request, 1);
        if (arcsim::argumentsOf(arcsim::requestOf(arcsim::messageOf(arcsim::lineOf(written)))) != written.at("args"))
            fuzz::finding("a call is not read as it was written");
    });
    for (std::size_t i = 0; i < arcsim::kFunctions && message.contains("code"); ++i)
        tried([&] {
            const auto function = static_cast<arcsim::Function>(i);
            const Json written = arcsim::answerMessage(1, function, arcsim::replyOf(function, message));
            const auto reply = arcsim::replyOf(function, arcsim::messageOf(arcsim::lineOf(written)));
            if (arcsim::lineOf(arcsim::answerMessage(1, function, reply)) != arcsim::lineOf(written))
                fuzz::finding("an answer is not read as it was written");
        });
}

/// What `piece` bytes at a time leave of the line ends does not matter.
std::vector<std::string> linesOf(std::string_view bytes, std::size_t piece)
{
    std::vector<std::string> found;
    arcsim::LineBuffer lines;
    while (!bytes.empty()) {
        lines.add(bytes.substr(0, piece));
        bytes.remove_prefix(std::min(piece, bytes.size()));
        while (const auto line = lines.take())
            found.push_back(*line);
    }
    return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(data, data + size);
    const std::vector<std::string> lines = linesOf(text, std::string::npos);
    if (linesOf(text, 1) != lines || linesOf(text, 7) != lines)
        fuzz::finding("how the bytes arrive changes the lines");
    for (const std::string& line : lines)
        try {
            interpret(arcsim::messageOf(line));
        } catch (const ProtocolError&) {
        }
    return 0;
}
