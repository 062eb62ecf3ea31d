#pragma once

#include <stdexcept>
#include <string>

namespace support {

/// Why a program cannot go on: its exit code, and what to say on stderr.
class Failure : public std::runtime_error
{
public:
    Failure(int exitCode, const std::string& text) : std::runtime_error(text), m_exitCode(exitCode) {}
    int exitCode() const { return m_exitCode; }

private:
    int m_exitCode;
};

}  // namespace support
