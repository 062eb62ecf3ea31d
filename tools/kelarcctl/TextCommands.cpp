#include "kelarcctl/Commands.h"
#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Texts.h"

#include <cstdio>

namespace kelarcctl {

void addTexts(CLI::App& app, Invocation& invocation)
{
    using Text = std::string (*)(const CLI::App&, const Invocation&);
    const auto add = [&](const std::string& name, const std::string& help, Text text) {
        app.add_subcommand(name, help)->callback([&app, &invocation, text] {
            std::fputs(text(app, invocation).c_str(), stdout);
            throw CLI::RuntimeError(kExitOk);
        });
    };
    add("completion", "Print the completion of bash: source <(kelarcctl completion)", bashCompletion);
    add("man", "Print the manual page: kelarcctl man | man -l -", manPage);
}

}  // namespace kelarcctl
