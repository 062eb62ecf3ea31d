// Whatever the receiver, the modem and the library send to the monitor, and whatever keys are pressed, every screen is
// drawn in its size and without terminal control characters. An input is lines; the first letter of each tells its
// kind, see tell().

#include "fuzz/Finding.h"
#include "fuzz/Signed.h"
#include "kelarcctl/monitor/EpochJson.h"
#include "kelarcctl/monitor/Keys.h"
#include "kelarcctl/monitor/Screen.h"
#include "nmea/EpochBuilder.h"

#include <cstdint>
#include <sstream>

namespace {

using namespace kelarcctl;

class Monitor
{
public:
    Monitor()
    {
        m_model.settings = {{"cpu-power", "Power/Cpu", "", "standard, max", "max", ""},
                            {"sbas", "Nmea/Sbas", "", "off, on", "on", ""},
                            {"period", "Nmea/FreqMs", "ms", "1000, 500, 200, 100", "1000", ""},
                            {"min-elevation", "Sens/MinElevAngle", "", "a whole number from 5 to 45", "5", ""},
                            {"raw-version", "Raw/Version", "", "", "1", ""}};
        for (const char* const system : {"gps", "glonass", "beidou", "galileo"})
            m_model.lsta.push_back({system, false, 0, 0, ""});
        m_model.link = Link::open;
        m_model.output = RawOutput::running;
    }

    void tell(const std::string& line)
    {
        const std::string rest = line.empty() ? "" : line.substr(1);
        switch (line.empty() ? '\0' : line.front()) {
        case 'L':
            logged(rest);
            break;
        case 'E':
            m_model.addEvent({"03:00:00", Style::plain, rest});
            break;
        case 'K':
            for (const char key : rest)
                press(key);
            break;
        case 'Q':
            m_model.queuedTasks = queuedTasksOf(rest);
            m_model.runningTask = rest;
            break;
        case 'S':
            readSetting(rest);
            break;
        case 'A':
            readLsta(rest);
            break;
        case 'N':
            m_model.clientLibrary = m_model.ril[0] = m_model.device = rest;
            m_model.setNotice(Style::bad, rest);
            break;
        case 'T':
            m_model.nowMs += 1000;
            draw(numberOf(rest) / 256 % 50, numberOf(rest) % 256 % 160);
            break;
        default:
            sentences(line + "\n");
        }
    }

    void drawAsciiScreen() const { draw(drawScreen(m_model, m_view, asciiGlyphs(), 24, 80), 24, 80); }

private:
    static int numberOf(const std::string& text)
    {
        return text.size() < 2 ? 0 : static_cast<unsigned char>(text[0]) * 256 + static_cast<unsigned char>(text[1]);
    }

    void sentences(const std::string& bytes)
    {
        for (const nmea::Sentence& sentence : m_reader.read(bytes)) {
            ++m_model.sentences;
            if (const auto epoch = m_builder.add(sentence)) {
                m_model.add(*epoch);
                epochJson(*epoch, m_model).dump();
            }
        }
    }

    void logged(const std::string& text)
    {
        const auto line = resultLineOf(text);
        if (!line) {
            m_model.addResult({"03:00:00", Style::warning, text});
            return;
        }
        m_model.attempts.add(*line);
        m_model.addResult({"03:00:00", Style::plain, line->call + line->text}, line->code != 0 ? line->call : "");
        if (m_model.attempts.failed() < 0 || m_model.attempts.failedOf("f: " + line->call) < 0)
            fuzz::finding("fewer than no failures");
    }

    void press(char key)
    {
        const auto kind = static_cast<unsigned char>(key) - 0x80;
        const bool isKind = kind > Key::character && kind <= Key::pageDown;
        const Wish wish =
            kelarcctl::press(m_view, m_model, isKind ? Key{static_cast<Key::Kind>(kind)} : Key{Key::character, key},
                             m_view.panel == Panel::all);
        if (wish.kind == Wish::write && (wish.setting >= m_model.settings.size() ||
                                         m_model.settings[wish.setting].accepted.empty() || wish.value.empty()))
            fuzz::finding("a wish to write what cannot be written");
    }

    void readSetting(const std::string& text)
    {
        if (text.empty())
            return;
        SettingRow& row = m_model.settings[static_cast<unsigned char>(text[0]) % m_model.settings.size()];
        row.value = text.size() > 1 ? std::optional(text.substr(1)) : std::nullopt;
        row.problem = row.value ? "" : "not understood";
        m_model.readMs = m_model.nowMs + 1;
    }

    void readLsta(const std::string& text)
    {
        std::istringstream words(text);
        unsigned row = 0;
        int status = 0;
        double value = 0;
        words >> row >> status >> value;
        LstaRow& lsta = m_model.lsta[row % m_model.lsta.size()];
        lsta = {lsta.system, true, status, value, ""};
    }

    void draw(int rows, int columns) const
    {
        draw(drawScreen(m_model, m_view, unicodeGlyphs(), rows, columns), rows, columns);
    }

    static void draw(const Canvas& canvas, int rows, int columns)
    {
        if (canvas.rows() != rows || canvas.columns() != columns)
            fuzz::finding("a screen of another size");
        for (int row = 0; row < rows; ++row)
            if (const std::string line = canvas.line(row); !line.empty())
                fuzz::requireReadable(line);
    }

    Model m_model{};
    View m_view{};
    nmea::NmeaReader m_reader{};
    nmea::EpochBuilder m_builder{};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Monitor monitor;
    std::istringstream lines(fuzz::withChecksums(std::string(data, data + size)));
    for (std::string line; std::getline(lines, line);)
        monitor.tell(line);
    monitor.drawAsciiScreen();
    return 0;
}
