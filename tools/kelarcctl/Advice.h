#pragma once

namespace kelarcctl {

/// The meaning of a result code, and what to do about it. The guide's table of codes has the same words.
struct Advice
{
    int code;
    const char* cause;
    const char* next;
    /// Whether the same request may succeed later although nobody does anything.
    bool mayPass;
};

constexpr int kLastKnownCode = 39;
constexpr int kNoDaemon = 31;

/// The advice for any code; unknown codes share one advice, whose code is -1.
const Advice& adviceOn(int code);

}  // namespace kelarcctl
