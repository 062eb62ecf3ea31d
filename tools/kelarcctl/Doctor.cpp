#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Findings.h"
#include "kelarcctl/ModemChecks.h"
#include "kelarcctl/ReceptionChecks.h"

#include <functional>
#include <system_error>
#include <utility>

namespace kelarcctl {

namespace {

/// Runs the checks in order; each relies on those before it.
class Doctor
{
public:
    Doctor(Session& session, const Output& output) : m_session(session), m_findings(output) {}

    int run()
    {
        ModemChecks modem(m_session);
        check("client library", [&] { return modem.clientLibrary(); });
        check("RIL daemon", [&] { return modem.daemon(); });
        check("open", [&] { return modem.open(); });
        check("settings readable", [&] { return modem.readable(); });
        check("settings plausible", [&] { return modem.plausible(); });
        ReceptionChecks reception(m_session, modem);
        check("raw output", [&] { return reception.start(); });
        check("sentences arrive", [&] { return reception.arrive(); });
        check("sentences correct", [&] { return reception.correct(); });
        check("satellites in view", [&] { return reception.inView(); });
        check("signal", [&] { return reception.signal(); });
        check("fix", [&] { return reception.fix(); });
        m_findings.finish();
        return m_findings.hasFailed() ? kExitRefused : kExitOk;
    }

private:
    void check(const char* name, const std::function<Finding()>& look)
    {
        Finding finding;
        if (m_isStuck) {
            finding = {name, State::skipped};
        } else {
            m_session.limit(kLongestAnswer);
            try {
                finding = look();
            } catch (const Failure& failure) {
                if (failure.exitCode() == kExitInterrupted)
                    throw;
                finding = stuck(failed(troubleOf(failure)));
            } catch (const std::system_error& error) {
                finding = stuck(failed(error.what(), "see whether another program has taken the device"));
            }
        }
        finding.check = name;
        m_isStuck = m_isStuck || finding.isStuck;
        m_findings.add(std::move(finding));
    }

    Session& m_session;
    Findings m_findings;
    bool m_isStuck = false;
};

}  // namespace

void addDoctor(CLI::App& app, Invocation& invocation)
{
    CLI::App& doctor = addCommand(
        app, "doctor", "Check what usually goes wrong, in order, from the client library to the fix", invocation);
    doctor.callback([&invocation, &doctor] {
        invocation.isOpened = false;
        if (doctor.count("--log-level") == 0)
            invocation.logLevel = 5;  // the findings say the same, and only once
        invocation.run = [](Session& session, const Output& output) {
            session.beQuiet();
            return Doctor(session, output).run();
        };
    });
}

}  // namespace kelarcctl
