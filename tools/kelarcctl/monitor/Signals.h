#pragma once

namespace kelarcctl {

/// SIGHUP and SIGWINCH as something to be read, and SIGTSTP for the main thread only: none of them may cut short a
/// pause of the library. Construct it before any thread is started.
class Signals
{
public:
    struct Seen
    {
        bool hangUp = false;
        bool resize = false;
    };

    Signals();
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /// Lets the calling thread be stopped by Ctrl-Z.
    void allowStop() const;
    int descriptor() const { return m_descriptor; }
    Seen take() const;

private:
    int m_descriptor;
};

}  // namespace kelarcctl
