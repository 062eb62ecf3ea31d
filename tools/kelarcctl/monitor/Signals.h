#pragma once

namespace kelarcctl {

/// SIGWINCH as something to be read, and SIGTSTP for the main thread only: neither may cut short a pause of the
/// library. Construct it before any thread is started.
class Signals
{
public:
    Signals();
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /// Lets the calling thread be stopped by Ctrl-Z.
    void allowStop() const;
    int descriptor() const { return m_descriptor; }
    /// True when the terminal's size has changed since the last time.
    bool takeResize() const;

private:
    int m_descriptor;
};

}  // namespace kelarcctl
