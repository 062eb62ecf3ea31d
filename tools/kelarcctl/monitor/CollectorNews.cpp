// The part of the collector that handles unrequested messages.

#include "kelarcctl/Advice.h"
#include "kelarcctl/LstaSystems.h"
#include "kelarcctl/Notifications.h"
#include "kelarcctl/monitor/Collector.h"
#include "kelarcctl/monitor/Format.h"

#include "kelarc/names.h"

#include <algorithm>
#include <ctime>
#include <iterator>

namespace kelarcctl {

namespace {

using kelarc::lsta::TYPE;

std::string clockText()
{
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    ::gmtime_r(&now, &utc);
    return format("%02d:%02d:%02d", utc.tm_hour, utc.tm_min, utc.tm_sec);
}

std::string shownName(kelarc::NOTIFY_ID id)
{
    // The monitor calls raw output just "output", so this notification gets a name of its own.
    return id == kelarc::NOTIFY_ID::RAW_GNSS_START_ENDED ? "output start ended" : kelarc::to_string(id);
}

std::string hexOf(const std::string& bytes)
{
    std::string text;
    for (const char byte : bytes)
        text += format("%02x", static_cast<unsigned char>(byte));
    return text;
}

/// The data as text if all of it is printable; otherwise empty.
std::string wordsIn(const std::string& bytes)
{
    const std::string text = bytes.substr(0, bytes.find_last_not_of('\0') + 1);
    const bool isText =
        text.size() > 2 && std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
    return isText ? text : "";
}

}  // namespace

void Collector::logLine(int level, const std::string& text)
{
    const std::optional<ResultLine> line = resultLineOf(text);
    const Style style = level >= 4 ? Style::bad : level == 3 ? Style::warning : Style::plain;
    if (!line) {
        result(style, text);
        tell({{"type", "log"}, {"level", level}, {"text", text}});
        return;
    }
    m_model.attempts.add(*line);
    follow(*line);
    const bool isRead = line->call.compare(0, 4, "Get ") == 0 || line->call.compare(0, 15, "ARC_CurrentLSTA") == 0;
    if (line->code == 0 && isRead)
        return;  // shown one by one, they would leave no room for anything else
    const std::string subject = format("(%d) ", line->code) + line->call;
    result(style, subject + format(" [%d] %4lld ms: ", line->retriesLeft, line->tookMs) + line->text,
           line->code != 0 ? subject : "");
    tell({{"type", "result"},
          {"call", line->call},
          {"code", line->code},
          {"text", line->text},
          {"retriesLeft", line->retriesLeft},
          {"tookMs", line->tookMs}});
}

/// Whether the daemon is there. Any answer except 31 shows that it is, unless the client library answers by itself.
void Collector::follow(const ResultLine& line)
{
    if (line.code == kCodeOfNotOpen && m_isOpen) {
        event(Style::bad, "the modem was closed by others");
        m_model.link = Link::opening;
        m_model.linkSinceMs = m_model.nowMs;
        tell({{"type", "link"}, {"state", "opening"}});
        openAgain();
        return;
    }
    const bool isAway = m_model.link == Link::noDaemon;
    if (line.call == "ARC_GetArcVersion()" || isAway == (line.code == kCodeOfNoDaemon))
        return;
    m_model.linkSinceMs = m_model.nowMs;
    if (!isAway) {
        m_model.link = Link::noDaemon;
        event(Style::bad, "no daemon");
        tell({{"type", "link"}, {"state", "no daemon"}});
        if (m_isOpen)
            openAgain();
        return;
    }
    m_model.link = m_isOpen ? Link::open : Link::opening;
    event(Style::good, "the daemon is back");
    tell({{"type", "link"}, {"state", m_isOpen ? "open" : "opening"}});
}

void Collector::notified(kelarc::NOTIFY_ID id, int length, const std::string& data)
{
    const std::string words = wordsIn(data);
    event(Style::plain, shownName(id) + (length > 0 ? format(", %d bytes: ", length) + hexOf(data) : "") +
                            (length > static_cast<int>(data.size()) ? ".." : "") +
                            (words.empty() ? "" : " \"" + words + "\""));
    tell({{"type", "event"}, {"event", nameOf(id)}, {"length", length}, {"data", hexOf(data)}});
}

void Collector::lstaChanged(TYPE type, int status, double value)
{
    const auto* const found = std::find_if(std::begin(kLstaSystems), std::end(kLstaSystems),
                                           [&](const kelarc::lsta::System& each) { return each.type == type; });
    if (found != std::end(kLstaSystems))
        setLsta(static_cast<std::size_t>(found - std::begin(kLstaSystems)), status, value, true);
}

void Collector::setLsta(std::size_t row, int status, double value, bool isReport)
{
    LstaRow& lsta = m_model.lsta[row];
    if (lsta.isKnown ? lsta.status != status : status != 0)
        event(status != 0 ? Style::good : Style::warning,
              "LSTA of " + lsta.system + format(": status %d, value %.1f", status, value));
    lsta = {lsta.system, true, status, value, ""};
    Json json{{"type", "lsta"}, {"system", lsta.system}, {"on", status != 0}, {"value", value}};
    if (isReport)  // only a report has a numeric status, an answer to a request has none
        json["status"] = status;
    tell(json);
}

void Collector::result(Style style, const std::string& text, const std::string& subject)
{
    m_model.addResult({clockText(), style, text}, subject);
}

void Collector::event(Style style, const std::string& text)
{
    m_model.addEvent({clockText(), style, text});
}

void Collector::tell(const Json& json) const
{
    if (m_tell)
        m_tell(json);
}

Trouble Collector::troubleWith(int code, const std::string& what) const
{
    const Advice& advice = adviceOn(code);
    return {Trouble::Kind::refused, what + " failed: " + refusal(code), code, 0, advice.cause, advice.next, {}, {}};
}

std::string Collector::refusal(int code) const
{
    const ResultLine& last = m_model.attempts.last();
    return (last.code == code && !last.text.empty() ? last.text : "result code") + format(" (%d)", code);
}

}  // namespace kelarcctl
