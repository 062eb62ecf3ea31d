#include "kelarcctl/monitor/KeyRows.h"
#include "kelarcctl/monitor/Panels.h"

namespace kelarcctl {

namespace {

std::vector<support::TextRow> legendRows()
{
    return {{"GPS 10/12 41.2", "satellites used in the fix / in view, mean C/N0"},
            {"GPS  0/10 LOST", "was heard before, is not heard now: jammed?"},
            {"GLO off", "switched off by a setting"},
            {"G07 45 123 42", "number, elevation and azimuth in degrees, C/N0 in dB-Hz"},
            {"Sky", "north is up, the rim the horizon. G used in the fix, g tracked, x neither; R GLONASS, "
                    "E Galileo, C BeiDou, J QZSS, S SBAS"},
            {"NO DAEMON", "requests are answered with 31 and repeated until it is back"},
            {"garbage", "lines of the receiver that are no sentence at all"}};
}

}  // namespace

std::vector<support::TextRow> keyRows()
{
    return {{"1-6", "Overview, Signal, Modem, Tasks, Events, Help; 0 all, from 120x40 on"},
            {"Tab", "the next panel, Shift-Tab the one before"},
            {"p", "pause: the screen stands still, everything else goes on"},
            {"s", "change a setting: arrows, Enter, Esc. A word also by its first letter. The first digit replaces a "
                  "number; Backspace, Delete, Ctrl-U, PgUp, PgDn, Home and End edit it"},
            {"g, x", "start, stop the raw output; a stop also ends that of others"},
            {"r", "read settings and LSTA again, which also happens every 10 s"},
            {"h, ?", "help"},
            {"q", "quit, and close the modem"}};
}

Canvas helpPanel(int rows, int columns)
{
    Canvas canvas(rows, columns);
    int row = 0;
    for (const std::vector<support::TextRow>& table : {keyRows(), legendRows()}) {
        for (const std::string& line : support::tableLines(table, static_cast<std::size_t>(columns)))
            canvas.text(row++, 0, line);
        ++row;
    }
    return canvas;
}

}  // namespace kelarcctl
