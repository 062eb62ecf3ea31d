// A navigation program on top of the library's public header: see Navigator.cpp for the order of its requests.

#include "navigator/ExitCode.h"
#include "navigator/LogOutput.h"
#include "navigator/Navigator.h"
#include "navigator/Options.h"
#include "support/Interrupt.h"
#include "support/StandardDescriptors.h"

#include "kelarc/KelArc.h"

#include <csignal>
#include <exception>

int main(int argc, char** argv)
{
    support::fillStandardDescriptors();
    int exitCode = navigator::kExitOk;
    const std::optional<navigator::Options> options = navigator::readOptions(argc, argv, exitCode);
    if (!options)
        return exitCode;
    std::signal(SIGPIPE, SIG_IGN);  // a reader of stdout that leaves must not keep the modem from being closed
    try {
        support::Interrupt interrupt;
        kelarc::KelArc modem(navigator::logToStderr);
        interrupt.allow();
        return navigator::Navigator(modem, interrupt, *options).run();
    } catch (const std::exception& error) {
        navigator::say("%s", error.what());
        return navigator::kExitDevice;
    }
}
