#pragma once

#include <string>

namespace support {

constexpr int kResultTexts = 40;

/// The published text of a result code.
std::string resultText(int code);

/// The log line of one attempt as the journal shows it.
std::string resultLine(int retriesLeft, const std::string& call, int code);

/// The log line of a task that has used up its attempts, as the journal shows it.
std::string gaveUpLine(int level, unsigned line, const std::string& call);

/// The pause after a failed attempt as the journal shows it.
inline const std::string kPause = "pause 0 s 250000000 ns";

}  // namespace support
