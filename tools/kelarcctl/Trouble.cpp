#include "kelarcctl/Trouble.h"

#include "kelarcctl/ExitCode.h"

#include "support/Words.h"

#include <cstdio>

namespace kelarcctl {

namespace {

constexpr std::size_t kLongest = 1000;  // longest text, which may contain a file name

const char* nameOf(Trouble::Kind kind)
{
    switch (kind) {
    case Trouble::Kind::refused:
        return "refused";
    case Trouble::Kind::slow:
        return "slow";
    case Trouble::Kind::silent:
        return "silent";
    case Trouble::Kind::interrupted:
        return "interrupted";
    case Trouble::Kind::usage:
        return "usage";
    case Trouble::Kind::failed:
        break;
    }
    return "failed";
}

Trouble::Kind kindOf(int exitCode)
{
    return exitCode == kExitUsage         ? Trouble::Kind::usage
           : exitCode == kExitInterrupted ? Trouble::Kind::interrupted
                                          : Trouble::Kind::failed;
}

Json orNull(const std::string& text)
{
    return text.empty() ? Json(nullptr) : Json(text);
}

}  // namespace

Json Trouble::json() const
{
    Json json{{"kind", nameOf(kind)},
              {"code", code ? Json(*code) : Json(nullptr)},
              {"text", support::shortened(text, kLongest)},
              {"cause", orNull(cause)},
              {"next", orNull(next)}};
    if (attempts > 0)
        json["attempts"] = attempts;
    if (!notes.empty())
        json["notes"] = notes;
    return json;
}

std::string Trouble::shown() const
{
    std::string lines = "kelarcctl: " + support::repeated(text, kLongest);
    if (!cause.empty())
        lines += "\n  " + cause;
    if (!next.empty())
        lines += "\n  -> " + next;
    for (const std::string& note : notes)
        lines += "\nkelarcctl: " + support::repeated(note, kLongest);
    return lines;
}

Trouble troubleOf(const std::exception& error)
{
    if (const auto* const failure = dynamic_cast<const TroubleFailure*>(&error))
        return failure->trouble();
    Trouble trouble;
    trouble.text = error.what();
    if (const auto* const failure = dynamic_cast<const support::Failure*>(&error))
        trouble.kind = kindOf(failure->exitCode());
    return trouble;
}

int exitCodeOf(const std::exception& error)
{
    const auto* const failure = dynamic_cast<const support::Failure*>(&error);
    return failure != nullptr ? failure->exitCode() : kExitRefused;
}

int report(const std::exception& error, const Output& output)
{
    const Trouble trouble = troubleOf(error);
    std::fprintf(stderr, "%s\n", trouble.shown().c_str());
    if (output.isJson()) {
        Json json = trouble.done;
        json["error"] = trouble.json();
        output.result(json, "");
    }
    return exitCodeOf(error);
}

}  // namespace kelarcctl
