#pragma once

namespace kelarcctl {

/// Makes SIGWINCH readable and limits SIGTSTP to the main thread: neither may cut short a pause of the library. Must be
/// constructed before any thread is started.
class Signals
{
public:
    Signals();
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /// Allows Ctrl-Z to stop the process through the calling thread.
    void allowStop() const;
    int descriptor() const { return m_descriptor; }
    /// True when the terminal's size has changed since the last time.
    bool takeResize() const;

private:
    int m_descriptor;
};

}  // namespace kelarcctl
