#pragma once

namespace support {

/// Ctrl-C, SIGTERM, SIGQUIT and SIGHUP. The first signal asks for an orderly end: it makes descriptor() readable and
/// ends current waits. The second signal other than SIGHUP ends the process at once with exit code 130: SIGHUP does not
/// count, because hang-ups come several at a time and beside other signals. A SIGHUP that is ignored when the program
/// starts stays ignored.
///
/// One object per process. Construct it before any thread is started and allow() the signals on the main thread
/// afterwards: threads begun in between never receive them, so that no pause between two attempts is cut short.
class Interrupt
{
public:
    Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Lets the calling thread receive the signals.
    void allow();

    bool isRequested() const;
    int descriptor() const;

    /// Sets an action that the second signal runs before it ends the process. The action runs inside the signal
    /// handler, so it may only do what is allowed there.
    static void beforeLeaving(void (*action)());
};

}  // namespace support
