#pragma once

#include "kelarcctl/monitor/Canvas.h"
#include "kelarcctl/monitor/Keys.h"

#include <optional>

namespace kelarcctl {

/// Controls the terminal at standard input and output while the object lives, then restores it. One object per process,
/// main thread only.
class Terminal
{
public:
    /// Throws Failure if a screen cannot be drawn on the terminal.
    explicit Terminal(bool wantsColours);
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    int rows() const;
    int columns() const;
    /// To be called after SIGWINCH; the object does not watch for the signal.
    void measure();

    const Glyphs& glyphs() const;
    /// Sends the differences from the previous screen.
    void draw(const Canvas& canvas);
    /// The next key that was pressed; empty when there is none.
    std::optional<Key> key();

    /// Restores the terminal from a signal handler, before the process ends.
    static void abandon();

private:
    void leave();
    void chooseLooks(bool wantsColours);

    bool m_isUtf8 = false;
};

}  // namespace kelarcctl
