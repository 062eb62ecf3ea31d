#include "support/Journal.h"

#include <algorithm>
#include <chrono>
#include <regex>
#include <utility>

namespace support {
namespace {

constexpr std::chrono::seconds kLimit{30};

std::string withoutElapsedTime(const std::string& line)
{
    static const std::regex elapsed(" took [0-9]+ ms: ");
    return std::regex_replace(line, elapsed, " took %u ms: ", std::regex_constants::format_sed);
}

}  // namespace

std::function<void(int, const char*)> Journal::logCallback()
{
    return [this](int level, const char* line) {
        append({Kind::line, std::to_string(level) + ' ' + withoutElapsedTime(line), line, std::this_thread::get_id()});
    };
}

void Journal::add(Kind kind, std::string text)
{
    append({kind, text, text, std::this_thread::get_id()});
}

void Journal::append(Entry entry)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_entries.push_back(std::move(entry));
    m_changed.notify_all();
}

void Journal::clear()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_entries.clear();
}

std::vector<Journal::Entry> Journal::entries() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_entries;
}

std::vector<Journal::Entry> Journal::entries(Kind kind) const
{
    std::vector<Entry> found = entries();
    found.erase(std::remove_if(found.begin(), found.end(), [kind](const Entry& entry) { return entry.kind != kind; }),
                found.end());
    return found;
}

std::vector<std::string> Journal::texts() const
{
    std::vector<std::string> texts;
    for (Entry& entry : entries())
        texts.push_back(std::move(entry.text));
    return texts;
}

std::vector<std::string> Journal::texts(Kind kind) const
{
    std::vector<std::string> texts;
    for (Entry& entry : entries(kind))
        texts.push_back(std::move(entry.text));
    return texts;
}

std::size_t Journal::count(Kind kind) const
{
    return entries(kind).size();
}

bool Journal::waitFor(Kind kind, std::size_t count) const
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const auto isKind = [kind](const Entry& entry) { return entry.kind == kind; };
    return m_changed.wait_for(lock, kLimit, [&] {
        return static_cast<std::size_t>(std::count_if(m_entries.begin(), m_entries.end(), isKind)) >= count;
    });
}

}  // namespace support
