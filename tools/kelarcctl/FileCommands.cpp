#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Queries.h"
#include "kelarcctl/SettingsFile.h"

#include "support/Files.h"
#include "support/Words.h"

#include <memory>

namespace kelarcctl {

namespace {

constexpr std::chrono::seconds kGrace{10};
constexpr std::size_t kLargestFile = 1'000'000;

std::string contentOf(const std::string& path)
{
    const support::ReadRules rules{kLargestFile, "the name of a file of settings, or - for standard input", true};
    try {
        return path == "-" ? support::readStandardInput(rules) : support::readFile(path, rules);
    } catch (const support::FileError& error) {
        throw Failure(kExitUsage, error.what());
    }
}

void writeFile(const std::string& path, const std::string& text)
{
    try {
        support::writeOutput(path, text, "the name of a file, or - for standard output");
    } catch (const support::FileError& error) {
        throw Failure(kExitRefused, error.what());
    }
}

int exportSettings(Session& session, const Output& output, const std::string& path)
{
    Json values = Json::object();
    std::vector<std::string> left;
    for (const Setting& setting : settings()) {
        if (!setting.isWritable())
            continue;
        const Setting::Reading reading = setting.read(session);
        session.require(reading.code, "reading " + setting.command);
        if (reading.value)
            values[setting.command] = setting.json(*reading.value);
        else
            left.push_back(setting.command);
    }
    const Json document{{"settings", values}};
    Json json = document;
    std::string text = document.dump(2);
    if (!path.empty() && !support::isStandardOutput(path)) {
        writeFile(path, text + "\n");
        json = {{"file", path}, {"count", values.size()}};
        text = path + ": " + std::to_string(values.size()) + " settings";
    }
    if (left.empty()) {
        output.result(json, text);
        return kExitOk;
    }
    output.text(text);
    Trouble trouble;
    trouble.text = "left out, because the modem's value is not understood: " + support::joined(left);
    trouble.next = "Read it with kelarcctl get, and write a value that is accepted.";
    trouble.done = json;
    throw TroubleFailure(kExitRefused, trouble);
}

/// Changes the modem to the wanted settings, or restores the earlier ones.
class Application
{
public:
    Application(Session& session, const Output& output) : m_session(session), m_output(output) {}

    int run(const std::vector<Wanted>& wanted, bool isDry)
    {
        std::size_t same = 0;
        for (const Wanted& each : wanted) {
            const Setting::Reading reading = each.setting->read(m_session);
            m_session.require(reading.code, "reading " + each.setting->command);
            if (reading.value == each.value)
                ++same;
            else
                m_changes.push_back({each.setting, reading.value, each.value, readKey(m_session, each.setting->key)});
        }
        Json changes = Json::array();
        std::string text;
        for (const Change& change : m_changes) {
            changes.push_back({{"setting", change.setting->command},
                               {"key", change.setting->key},
                               {"value", change.setting->json(change.value)},
                               {"before", jsonOf(*change.setting, change.before)}});
            text += change.setting->command + ": " + shown(*change.setting, change.before) + " -> " +
                    shown(*change.setting, change.value) + "\n";
        }
        const Json json{{"dryRun", isDry}, {"changes", changes}, {"same", same}};
        if (!isDry)
            write(json);
        text += std::to_string(m_changes.size()) + (isDry ? " to change, " : " changed, ") + std::to_string(same) +
                " as wanted already";
        m_output.result(json, text);
        return kExitOk;
    }

private:
    struct Change
    {
        const Setting* setting;
        std::optional<std::string> before;
        std::string value;
        std::string rawBefore;  ///< to restore also values that are not understood
    };

    void write(const Json& json)
    {
        for (std::size_t i = 0; i < m_changes.size(); ++i) {
            const Change& change = m_changes[i];
            const std::string& name = change.setting->command;
            try {
                m_session.require(change.setting->write(m_session, change.value), "writing " + name);
                const Setting::Reading after = change.setting->read(m_session);
                m_session.require(after.code, "reading " + name + " back");
                if (after.value != change.value)
                    throw TroubleFailure(kExitRefused, readsBackOtherwise(*change.setting, change.value, after.value));
            } catch (const std::exception& error) {
                Trouble trouble = troubleOf(error);
                trouble.done = json;
                putBack(i + 1, trouble);
                throw TroubleFailure(exitCodeOf(error), trouble);
            }
        }
    }

    /// Undoes the last `count` changes, latest first, including the failed one, which may have taken effect. Adds the
    /// outcome to the trouble.
    void putBack(std::size_t count, Trouble& trouble)
    {
        m_session.beginGrace(kGrace);
        Json back = Json::array();
        Json lost = Json::array();
        for (std::size_t i = count; i-- > 0;) {
            const Change& change = m_changes[i];
            std::string problem;
            try {
                writeKey(m_session, change.setting->key, change.rawBefore);
                if (readKey(m_session, change.setting->key) != change.rawBefore)
                    problem = "it reads back otherwise";
            } catch (const std::exception& error) {
                problem = error.what();
            }
            (problem.empty() ? back : lost).push_back(change.setting->command);
            const std::string before = change.before ? shown(*change.setting, change.before) : change.rawBefore;
            trouble.notes.push_back(change.setting->command +
                                    (problem.empty() ? " is " + before + " again"
                                                     : " could not be put back to " + before + ": " + problem));
        }
        trouble.done["putBack"] = back;
        trouble.done["notPutBack"] = lost;
    }

    Session& m_session;
    const Output m_output;
    std::vector<Change> m_changes{};
};

}  // namespace

void addFiles(CLI::App& app, Invocation& invocation)
{
    const auto path = std::make_shared<std::string>();
    CLI::App& exporting =
        addCommand(app, "export", "Write all settings as JSON, to a file or standard output", invocation);
    invocation.files.push_back(
        exporting.add_option("FILE", *path, "Replaced as a whole; - is standard output")->option_text(" "));
    exporting.callback([&invocation, path] {
        invocation.run = [path](Session& session, const Output& output) {
            return exportSettings(session, output, *path);
        };
    });

    CLI::App& applying =
        addCommand(app, "apply", "Bring the modem to the settings of a file; on a failure put all back", invocation);
    invocation.files.push_back(
        applying.add_option("FILE", *path, "As export writes it, or a part of that; - is standard input")
            ->option_text(" ")
            ->required());
    const auto isDry = std::make_shared<bool>(false);
    applying.add_flag("--dry-run", *isDry, "Show what would be changed, and change nothing");
    applying.callback([&invocation, path, isDry] {
        // Done before the modem is touched.
        const auto wanted = std::make_shared<std::vector<Wanted>>(
            readSettings(contentOf(*path), *path == "-" ? "standard input" : *path));
        invocation.run = [wanted, isDry](Session& session, const Output& output) {
            return Application(session, output).run(*wanted, *isDry);
        };
    });
}

}  // namespace kelarcctl
