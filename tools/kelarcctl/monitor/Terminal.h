#pragma once

#include "kelarcctl/monitor/Canvas.h"
#include "kelarcctl/monitor/Keys.h"

#include <optional>

namespace kelarcctl {

/// The terminal at standard input and output, as long as the object lives; then it is as it was before. One object per
/// process, main thread only.
class Terminal
{
public:
    /// Throws Failure for a terminal that a screen cannot be drawn on.
    explicit Terminal(bool wantsColours);
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    int rows() const;
    int columns() const;
    /// To be called after SIGWINCH, which is not waited for here.
    void measure();

    const Glyphs& glyphs() const;
    /// Sends what differs from the screen before.
    void draw(const Canvas& canvas);
    /// The next key that was pressed; empty when there is none.
    std::optional<Key> key();

    /// Gives the terminal back in a signal handler, before the process ends.
    static void abandon();

private:
    void leave();
    void chooseLooks(bool wantsColours);

    bool m_isUtf8 = false;
};

}  // namespace kelarcctl
