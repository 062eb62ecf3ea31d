#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Notifications.h"
#include "kelarcctl/Stream.h"

#include <memory>

namespace kelarcctl {

void addEvents(CLI::App& app, Invocation& invocation)
{
    CLI::App& events = addCommand(app, "events", "Show the modem's notifications until Ctrl-C", invocation);
    const auto end = addStreamEnd(events);
    events.callback([&invocation, end] {
        invocation.run = [end](Session& session, const Output& output) {
            const auto stream = std::make_shared<Stream>();
            session.modem().setNotificationCB([stream](kelarc::NOTIFY_ID id, void* data, int length) {
                const std::string utc = utcText();
                const std::string name = nameOf(id);
                const Payload payload = payloadOf(data, length);
                stream->put({{"utc", utc}, {"event", name}, {"length", length}, {"data", payload.hex}},
                            utc + "  " + name + ", " + std::to_string(length) + " bytes" +
                                (payload.hex.empty() ? "" : ": " + payload.hex) +
                                (payload.text.empty() ? "" : "  " + payload.text));
            });
            session.settle("registering for notifications");
            return stream->run(session, output, *end, "watching notifications");
        };
    });
}

}  // namespace kelarcctl
