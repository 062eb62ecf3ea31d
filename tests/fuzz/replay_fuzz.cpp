// Any recording, and anything that an application may do to its replay. An input is a recording, the sign 1B, and a
// talk (Talk.h).

#include "arcsim/ReplayService.h"
#include "fuzz/Finding.h"
#include "fuzz/Pass.h"
#include "fuzz/Talk.h"
#include "scenario/ScenarioError.h"
#include "support/Printable.h"

#include <cstdint>
#include <optional>

namespace {

using std::chrono::milliseconds;

std::optional<arcsim::Recording> recordingOf(const std::string& text)
{
    try {
        return arcsim::parseRecording("fuzz.jsonl", text);
    } catch (const arcsim::ScenarioError&) {
        return std::nullopt;
    }
}

void requirePrintable(const std::string& text)
{
    if (support::printable(text).empty())
        fuzz::finding("a difference without a word");
}

class Conversation
{
public:
    Conversation(asio::io_context& context, arcsim::Recording recording)
        : m_context(context), m_service(context, std::move(recording), {})
    {
    }

    void run(std::string_view input)
    {
        fuzz::talk(m_peers, input, [this](milliseconds time) { pass(time); });
        pass(std::chrono::hours(1));
        m_peers.settle();
        requirePrintable(textOf(m_service.book().finish()));
    }

private:
    void pass(milliseconds time) { fuzz::pass(m_context, m_clock, time); }

    host_test::HeldClock m_clock{};
    asio::io_context& m_context;
    arcsim::ReplayService m_service;
    fuzz::Peers m_peers{m_service};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static asio::io_context context(1);
    const std::string text(data, data + size);
    const std::size_t end = text.find('\x1b');
    std::optional<arcsim::Recording> recording = recordingOf(text.substr(0, end));
    if (!recording)
        return -1;  // recording_fuzz finds out more about these
    Conversation(context, *std::move(recording))
        .run(end == std::string::npos ? std::string_view() : std::string_view(text).substr(end + 1));
    context.restart();
    context.poll();  // handlers of what has gone with the service
    return 0;
}
