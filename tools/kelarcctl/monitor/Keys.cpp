#include "kelarcctl/monitor/Keys.h"

#include "kelarcctl/monitor/Format.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>
#include <utility>

namespace kelarcctl {

namespace {

constexpr char kWholeNumbers[] = "a whole number from ";
constexpr std::size_t kMostDigits = 6;
constexpr int kPage = 10;

struct Range
{
    int lowest = 0;
    int highest = 0;
};

std::optional<Range> rangeOf(const std::string& accepted)
{
    constexpr std::size_t kBegin = sizeof kWholeNumbers - 1;
    constexpr char kBetween[] = " to ";
    if (accepted.compare(0, kBegin, kWholeNumbers) != 0)
        return std::nullopt;
    const std::size_t between = accepted.find(kBetween, kBegin);
    if (between == std::string::npos)
        return std::nullopt;
    Range range;
    const char* const end = accepted.data() + accepted.size();
    std::from_chars(accepted.data() + kBegin, accepted.data() + between, range.lowest);
    std::from_chars(accepted.data() + between + sizeof kBetween - 1, end, range.highest);
    return range;
}

bool canBeWritten(const Model& model, std::size_t row)
{
    return row < model.settings.size() && !model.settings[row].accepted.empty();
}

/// Moves to the nearest writable setting in that direction, if any.
bool moveSetting(View& view, const Model& model, int step)
{
    for (int row = static_cast<int>(view.setting) + step; row >= 0 && row < static_cast<int>(model.settings.size());
         row += step)
        if (canBeWritten(model, static_cast<std::size_t>(row))) {
            view.setting = static_cast<std::size_t>(row);
            return true;
        }
    return false;
}

void beginValue(View& view, const SettingRow& row)
{
    view.mode = View::Mode::value;
    view.complaint.clear();
    view.typed = row.value.value_or("");
    view.replaces = true;
    view.words = rangeOf(row.accepted) ? std::vector<std::string>{} : wordsOf(row.accepted);
    const auto present = std::find(view.words.begin(), view.words.end(), view.typed);
    view.word = present == view.words.end() ? 0 : static_cast<std::size_t>(present - view.words.begin());
}

Wish pressForSetting(View& view, const Model& model, const Key& key)
{
    switch (key.kind) {
    case Key::up:
        moveSetting(view, model, -1);
        break;
    case Key::down:
        moveSetting(view, model, 1);
        break;
    case Key::home:
    case Key::end:
        while (moveSetting(view, model, key.kind == Key::home ? -1 : 1)) {
        }
        break;
    case Key::enter:
        if (canBeWritten(model, view.setting))
            beginValue(view, model.settings[view.setting]);
        break;
    case Key::escape:
        view.mode = View::Mode::watching;
        break;
    case Key::character:
        if (key.value == 'q')
            view.mode = View::Mode::watching;
        break;
    default:
        break;
    }
    return {};
}

Wish send(View& view, const std::string& value)
{
    view.mode = View::Mode::setting;
    return {Wish::write, view.setting, value};
}

/// Moves to the next word that begins with this letter, if any.
void seekWord(View& view, char letter)
{
    const auto isMeant = [letter](const std::string& word) {
        return std::tolower(static_cast<unsigned char>(word.front())) ==
               std::tolower(static_cast<unsigned char>(letter));
    };
    for (std::size_t step = 1; step <= view.words.size(); ++step) {
        const std::size_t next = (view.word + step) % view.words.size();
        if (isMeant(view.words[next])) {
            view.word = next;
            return;
        }
    }
}

Wish pressForWord(View& view, const Key& key)
{
    const std::size_t count = view.words.size();
    if (key.kind == Key::up || key.kind == Key::left)
        view.word = (view.word + count - 1) % count;
    else if (key.kind == Key::down || key.kind == Key::right)
        view.word = (view.word + 1) % count;
    else if (key.kind == Key::home || key.kind == Key::end)
        view.word = key.kind == Key::home ? 0 : count - 1;
    else if (key.kind == Key::character)
        seekWord(view, key.value);
    else if (key.kind == Key::enter)
        return send(view, view.words[view.word]);
    return {};
}

/// The step by which arrow keys and the like change a number.
int stepOf(Key::Kind kind, const Range& range)
{
    switch (kind) {
    case Key::up:
    case Key::right:
        return 1;
    case Key::down:
    case Key::left:
        return -1;
    case Key::pageUp:
        return kPage;
    case Key::pageDown:
        return -kPage;
    case Key::home:
        return range.lowest - range.highest;
    case Key::end:
        return range.highest - range.lowest;
    default:
        return 0;
    }
}

void typeDigit(View& view, char digit)
{
    if (std::exchange(view.replaces, false))
        view.typed.clear();
    if (view.typed.size() < kMostDigits)
        view.typed += digit;
}

Wish pressForNumber(View& view, const Key& key, const SettingRow& row)
{
    const Range range = rangeOf(row.accepted).value_or(Range{});
    int number = 0;
    const char* const end = view.typed.data() + view.typed.size();
    const auto [parsed, error] = std::from_chars(view.typed.data(), end, number);
    const bool isNumber = error == std::errc() && parsed == end;
    view.complaint.clear();
    if (const int step = stepOf(key.kind, range); step != 0) {
        view.typed = std::to_string(isNumber ? std::clamp(number + step, range.lowest, range.highest) : range.lowest);
        view.replaces = true;
    } else if (key.kind == Key::backspace || key.kind == Key::clear) {
        const bool takesAll = key.kind == Key::clear || view.typed.empty();
        view.typed = takesAll ? "" : view.typed.substr(0, view.typed.size() - 1);
        view.replaces = false;
    } else if (key.kind == Key::character && key.value >= '0' && key.value <= '9') {
        typeDigit(view, key.value);
    } else if (key.kind == Key::enter && isNumber && number >= range.lowest && number <= range.highest) {
        return send(view, std::to_string(number));
    } else if (key.kind == Key::enter) {
        view.complaint = "'" + view.typed + "' is not accepted; accepted: " + row.accepted;
    }
    return {};
}

Wish pressForValue(View& view, const Model& model, const Key& key)
{
    if (key.kind == Key::escape || view.setting >= model.settings.size()) {
        view.mode = View::Mode::setting;
        view.complaint.clear();
        return {};
    }
    return view.words.empty() ? pressForNumber(view, key, model.settings[view.setting]) : pressForWord(view, key);
}

void turn(View& view, int by, bool roomy)
{
    const int first = roomy ? 0 : 1;
    const int count = static_cast<int>(Panel::help) + 1 - first;
    const int present = std::max(static_cast<int>(view.panel) - first, 0);
    view.panel = static_cast<Panel>((present + by + count) % count + first);
}

void beginSetting(View& view, const Model& model, bool roomy)
{
    view.isPaused = false;
    view.mode = View::Mode::setting;
    if (view.panel != Panel::all || !roomy)
        view.panel = Panel::modem;
    if (!canBeWritten(model, view.setting))
        moveSetting(view, model, 1);
}

}  // namespace

Wish press(View& view, const Model& model, const Key& key, bool roomy)
{
    if (view.mode == View::Mode::setting)
        return pressForSetting(view, model, key);
    if (view.mode == View::Mode::value)
        return pressForValue(view, model, key);
    if (key.kind == Key::tab || key.kind == Key::backTab)
        turn(view, key.kind == Key::tab ? 1 : -1, roomy);
    if (key.kind != Key::character)
        return {};
    switch (key.value) {
    case 'q':
        return {Wish::quit};
    case 'g':
        return {Wish::start};
    case 'x':
        return {Wish::stop};
    case 'r':
        return {Wish::read};
    case 'p':
        view.isPaused = !view.isPaused;
        break;
    case 's':
        beginSetting(view, model, roomy);
        break;
    case 'h':
    case '?':
        view.panel = Panel::help;
        break;
    default:
        if (key.value >= (roomy ? '0' : '1') && key.value <= '6')
            view.panel = static_cast<Panel>(key.value - '0');
    }
    return {};
}

}  // namespace kelarcctl
