#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Queries.h"

#include "support/Printable.h"

#include <optional>

namespace kelarcctl {

namespace {

Json versionsJson(const ArcVersion& arc, const RilVersions& ril)
{
    return {{"clientLibrary", arc.text}, {"ril", {{"primary", ril.primary}, {"secondary", ril.secondary}}}};
}

std::string versionsText(const ArcVersion& arc, const RilVersions& ril)
{
    using support::printable;
    return "client library  " + printable(arc.text) + "\nRIL             " + printable(ril.primary) + ", " +
           printable(ril.secondary);
}

int versions(Session& session, const Output& output)
{
    const ArcVersion arc = readArcVersion(session);
    session.require(arc.code, "reading the client library's version");
    const RilVersions ril = readRilVersion(session);
    session.require(ril.code, "reading the RIL's version");
    output.result(versionsJson(arc, ril), versionsText(arc, ril));
    return kExitOk;
}

std::string row(const std::string& name, const std::string& value)
{
    constexpr std::size_t kWidth = 16;
    return "\n" + name + std::string(name.size() < kWidth ? kWidth - name.size() : 1, ' ') + value;
}

/// All information that could be read, and what could not be read.
class Status
{
public:
    explicit Status(Session& session) : m_session(session) {}

    int run(const Output& output)
    {
        readVersions();
        for (const Setting& setting : settings()) {
            const Setting::Reading reading = setting.read(m_session);
            take(m_json["settings"][setting.command], setting.command, reading.code, "reading " + setting.command,
                 jsonOf(setting, reading.value), shown(setting, reading.value));
        }
        for (const kelarc::lsta::System& system : kLstaSystems) {
            const std::string name = wordOf(system);
            const LstaAnswer answer = readLsta(m_session, system);
            take(m_json["lsta"][name], "lsta " + name, answer.code, "reading the LSTA of " + name, lstaJson(answer),
                 lstaText(answer.status, answer.value));
        }
        if (m_refused)
            m_json["error"] = m_refused->json();
        output.result(m_json, m_text.substr(1));
        return m_refused ? kExitRefused : kExitOk;
    }

private:
    void readVersions()
    {
        const ArcVersion arc = readArcVersion(m_session);
        const Trouble arcTrouble = m_session.refusal(arc.code, "reading the client library's version");
        const RilVersions ril = readRilVersion(m_session);
        m_json["versions"] = versionsJson(arc, ril);
        m_text = "\n" + versionsText(arc, ril);
        if (arc.code != 0)
            refuse(m_json["versions"]["clientLibrary"], "", arcTrouble);
        if (ril.code != 0)
            refuse(m_json["versions"]["ril"], "", m_session.refusal(ril.code, "reading the RIL's version"));
    }

    void take(Json& member, const std::string& name, int code, const std::string& what, const Json& json,
              const std::string& text)
    {
        if (code != 0)
            return refuse(member, name, m_session.refusal(code, what));
        member = json;
        m_text += row(name, text);
    }

    void refuse(Json& member, const std::string& name, const Trouble& trouble)
    {
        member = {{"error", trouble.json()}};
        m_text += row(name, support::printable(trouble.text)) + row("", "-> " + trouble.next);
        m_refused = m_refused ? m_refused : trouble;
    }

    Session& m_session;
    Json m_json = Json::object();
    std::string m_text{};
    std::optional<Trouble> m_refused{};  ///< the first
};

}  // namespace

void addInformation(CLI::App& app, Invocation& invocation)
{
    addCommand(app, "status", "Everything that can be read: versions, settings, LSTA", invocation)
        .callback([&invocation] {
            invocation.run = [](Session& session, const Output& output) { return Status(session).run(output); };
        });
    addCommand(app, "versions", "Versions of the client library and of the RIL", invocation).callback([&invocation] {
        invocation.run = versions;
    });
}

}  // namespace kelarcctl
