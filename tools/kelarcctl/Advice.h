#pragma once

namespace kelarcctl {

/// What a result code means, and what can be done then. The guide's table of the codes has the same words.
struct Advice
{
    int code;
    const char* cause;
    const char* next;
    /// Whether the same request may succeed later without anybody's doing.
    bool mayPass;
};

constexpr int kLastKnownCode = 39;
constexpr int kNoDaemon = 31;

/// For any code: those that are not known have an advice in common, whose code is -1.
const Advice& adviceOn(int code);

}  // namespace kelarcctl
