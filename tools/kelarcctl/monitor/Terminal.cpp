#include "kelarcctl/monitor/Terminal.h"

#include "kelarcctl/ExitCode.h"
#include "kelarcctl/Session.h"
#include "kelarcctl/monitor/Terminfo.h"

#include <atomic>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <langinfo.h>
#include <string>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#define NCURSES_NOMACROS  // most of them have the names of our own functions
#include <curses.h>

namespace kelarcctl {

namespace {

// The only data that abandon() may use; complete before abandon() can be called.
std::atomic<bool> g_isUp{false};
termios g_before{};
char g_farewell[256];
std::size_t g_farewellSize = 0;

chtype g_attributes[7];
SCREEN* g_screen = nullptr;

void rememberFarewell()
{
    std::string farewell;
    for (const char* const name : {"sgr0", "op", "cnorm", "rmkx", "rmcup"})
        farewell += capability(name);
    farewell += "\r\n";
    g_farewellSize = farewell.copy(g_farewell, sizeof g_farewell);
}

/// Whether all graphic characters are one column wide on this terminal.
bool areSingleWidth(const Glyphs& glyphs)
{
    for (const char32_t glyph : glyphs.levels)
        if (::wcwidth(static_cast<wchar_t>(glyph)) != 1)
            return false;
    return ::wcwidth(static_cast<wchar_t>(glyphs.ring)) == 1 && ::wcwidth(static_cast<wchar_t>(glyphs.rule)) == 1;
}

}  // namespace

Terminal::Terminal(bool wantsColours)
{
    std::setlocale(LC_CTYPE, "");
    m_isUtf8 = std::strcmp(::nl_langinfo(CODESET), "UTF-8") == 0 && areSingleWidth(unicodeGlyphs());
    const char* const type = std::getenv("TERM");
    const std::string shownType = type == nullptr ? "" : type;
    ::tcgetattr(STDIN_FILENO, &g_before);
    g_screen = ::newterm(nullptr, stdout, stdin);
    if (g_screen == nullptr || capability("cup").empty()) {
        leave();
        throw support::Failure(kExitUsage, "a screen cannot be drawn on a terminal of type '" + shownType +
                                               "'; set TERM to what it is, or use --json");
    }
    ::cbreak();
    ::noecho();
    ::nonl();
    ::nodelay(stdscr, true);
    ::keypad(stdscr, true);
    ::set_escdelay(50);
    ::curs_set(0);
    chooseLooks(wantsColours);
    rememberFarewell();
    g_isUp = true;
}

Terminal::~Terminal()
{
    leave();
}

void Terminal::leave()
{
    if (g_screen == nullptr)
        return;
    ::endwin();
    g_isUp = false;
    ::delscreen(g_screen);
    g_screen = nullptr;
}

void Terminal::chooseLooks(bool wantsColours)
{
    enum Pair : short
    {
        green = 1,
        yellow,
        red,
    };
    const auto look = [](Style style) -> chtype& { return g_attributes[static_cast<std::size_t>(style)]; };
    look(Style::plain) = A_NORMAL;
    look(Style::dim) = A_DIM;
    look(Style::strong) = A_BOLD;
    look(Style::selected) = A_REVERSE;
    look(Style::good) = A_BOLD;
    look(Style::warning) = A_UNDERLINE;
    look(Style::bad) = A_REVERSE;
    if (!wantsColours || !::has_colors())
        return;
    ::start_color();
    ::use_default_colors();
    ::init_pair(green, COLOR_GREEN, -1);
    ::init_pair(yellow, COLOR_YELLOW, -1);
    ::init_pair(red, COLOR_RED, -1);
    look(Style::good) = static_cast<chtype>(COLOR_PAIR(green));
    look(Style::warning) = static_cast<chtype>(COLOR_PAIR(yellow));
    look(Style::bad) = static_cast<chtype>(COLOR_PAIR(red)) | A_BOLD;
}

int Terminal::rows() const
{
    return ::getmaxy(stdscr);
}

int Terminal::columns() const
{
    return ::getmaxx(stdscr);
}

void Terminal::measure()
{
    winsize size{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0)
        ::resizeterm(size.ws_row, size.ws_col);
}

const Glyphs& Terminal::glyphs() const
{
    return m_isUtf8 ? unicodeGlyphs() : asciiGlyphs();
}

void Terminal::draw(const Canvas& canvas)
{
    ::erase();  // not clear(), which would redraw everything
    for (int row = 0; row < canvas.rows(); ++row)
        for (int column = 0; column < canvas.columns();) {
            const Style style = canvas.at(row, column).style;
            const int begin = column;
            std::string run;
            for (; column < canvas.columns() && canvas.at(row, column).style == style; ++column)
                run += utf8Of(canvas.at(row, column).glyph);
            if (style == Style::plain && run.find_first_not_of(' ') == std::string::npos)
                continue;
            ::attrset(static_cast<int>(g_attributes[static_cast<std::size_t>(style)]));
            ::mvaddnstr(row, begin, run.c_str(), -1);
        }
    ::wnoutrefresh(stdscr);
    ::doupdate();
}

std::optional<Key> Terminal::key()
{
    constexpr int kEscape = 27;
    constexpr int kCtrlU = 'U' - '@';
    for (;;) {
        const int code = ::getch();
        switch (code) {
        case ERR:
            return std::nullopt;
        case KEY_UP:
            return Key{Key::up};
        case KEY_DOWN:
            return Key{Key::down};
        case KEY_LEFT:
            return Key{Key::left};
        case KEY_RIGHT:
            return Key{Key::right};
        case KEY_ENTER:
        case '\r':
        case '\n':
            return Key{Key::enter};
        case '\t':
            return Key{Key::tab};
        case KEY_BTAB:
            return Key{Key::backTab};
        case KEY_BACKSPACE:
        case '\b':
        case 127:
            return Key{Key::backspace};
        case KEY_DC:
        case kCtrlU:
            return Key{Key::clear};
        case KEY_HOME:
            return Key{Key::home};
        case KEY_END:
            return Key{Key::end};
        case KEY_PPAGE:
            return Key{Key::pageUp};
        case KEY_NPAGE:
            return Key{Key::pageDown};
        case kEscape:
            return Key{Key::escape};
        default:
            if (code >= ' ' && code <= '~')
                return Key{Key::character, static_cast<char>(code)};
        }
    }
}

void Terminal::abandon()
{
    if (!g_isUp)
        return;
    [[maybe_unused]] const ssize_t written = ::write(STDOUT_FILENO, g_farewell, g_farewellSize);
    ::tcsetattr(STDIN_FILENO, TCSANOW, &g_before);
}

}  // namespace kelarcctl
