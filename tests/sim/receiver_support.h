#pragma once

// Takes sentences apart for the receiver's tests, apart from the code under test, so that both cannot be wrong alike.

#include "receiver/Receiver.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <poll.h>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

namespace receiver_test {

using Fields = std::vector<std::string>;

struct Line
{
    std::string text;  ///< with its line end
    bool valid = false;
    Fields fields;  ///< without "$" and checksum; the address comes first
};

inline Line takeApart(const std::string& text)
{
    Line line;
    line.text = text;
    const std::size_t star = text.rfind('*');
    if (text.size() < 6 || text[0] != '$' || star == std::string::npos || text.size() != star + 5 ||
        text.substr(star + 3) != "\r\n")
        return line;
    int sum = 0;
    std::string field;
    for (std::size_t i = 1; i < star; ++i) {
        sum ^= text[i];
        if (text[i] != ',') {
            field += text[i];
            continue;
        }
        line.fields.push_back(field);
        field.clear();
    }
    line.fields.push_back(field);
    char expected[8];
    std::snprintf(expected, sizeof expected, "%02X", static_cast<unsigned>(sum) & 0xFFU);
    line.valid = text.substr(star + 1, 2) == expected;
    return line;
}

/// Cuts after every line feed; what follows the last one is the last line.
inline std::vector<Line> linesOf(const std::string& bytes)
{
    std::vector<Line> lines;
    for (std::size_t begin = 0; begin < bytes.size();) {
        const std::size_t newline = bytes.find('\n', begin);
        const std::size_t end = newline == std::string::npos ? bytes.size() : newline + 1;
        lines.push_back(takeApart(bytes.substr(begin, end - begin)));
        begin = end;
    }
    return lines;
}

/// All sentences whose address ends so, for example "GSV".
inline std::vector<Fields> sentences(const std::string& bytes, const std::string& ending)
{
    std::vector<Fields> found;
    for (const Line& line : linesOf(bytes)) {
        const std::string address = line.fields.empty() ? "" : line.fields[0];
        if (address.size() >= ending.size() && address.substr(address.size() - ending.size()) == ending)
            found.push_back(line.fields);
    }
    return found;
}

/// The only sentence of its kind; empty fields when there is none or more than one.
inline Fields sentence(const std::string& bytes, const std::string& ending)
{
    const std::vector<Fields> all = sentences(bytes, ending);
    return all.size() == 1 ? all[0] : Fields(30);
}

struct InView
{
    std::string talker;
    int number = 0;
    int elevationDeg = 0;
    int azimuthDeg = 0;
    std::string carrier;  ///< empty while not tracked
};

inline std::vector<InView> inView(const std::string& bytes)
{
    std::vector<InView> all;
    for (const Fields& gsv : sentences(bytes, "GSV"))
        for (std::size_t i = 4; i + 4 < gsv.size(); i += 4)
            all.push_back(
                {gsv[0].substr(0, 2), std::stoi(gsv[i]), std::stoi(gsv[i + 1]), std::stoi(gsv[i + 2]), gsv[i + 3]});
    return all;
}

inline std::set<std::string> gsvTalkers(const std::string& bytes)
{
    std::set<std::string> talkers;
    for (const InView& satellite : inView(bytes))
        talkers.insert(satellite.talker);
    return talkers;
}

inline int trackedCount(const std::string& bytes)
{
    int count = 0;
    for (const InView& satellite : inView(bytes))
        count += satellite.carrier.empty() ? 0 : 1;
    return count;
}

/// Satellite numbers of GSA sentences by system id.
inline std::map<std::string, std::vector<std::string>> usedBySystem(const std::string& bytes)
{
    std::map<std::string, std::vector<std::string>> used;
    for (const Fields& gsa : sentences(bytes, "GSA")) {
        std::vector<std::string>& own = used[gsa.back()];
        for (std::size_t i = 3; i < 15; ++i)
            if (!gsa[i].empty())
                own.push_back(gsa[i]);
    }
    return used;
}

/// Degrees from a field such as 3540.87440 or 13946.02720.
inline double degrees(const std::string& field, const std::string& hemisphere)
{
    const double value = std::stod(field);
    const int whole = static_cast<int>(value / 100);
    const double result = whole + (value - whole * 100) / 60;
    return hemisphere == "S" || hemisphere == "W" ? -result : result;
}

/// A receiver that has its fix from the first epoch on.
inline arcsim::ReceiverScenario hotStart()
{
    arcsim::ReceiverScenario scenario;
    scenario.timeToFirstFix = std::chrono::milliseconds(0);
    return scenario;
}

/// One epoch of such a receiver.
inline std::string epochWith(const arcsim::ReceiverSettings& settings,
                             std::chrono::milliseconds at = std::chrono::milliseconds(0))
{
    return arcsim::Receiver(hotStart()).epoch(settings, at);
}

/// Looks again and again until the condition holds; false after half a minute. The poll without descriptors is the
/// pause, since tests supply a nanosleep of their own.
template <typename Condition>
bool await(const Condition& condition)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        ::poll(nullptr, 0, 2);
    }
    return true;
}

/// A file that is gone with the object.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& content)
    {
        std::string name = (std::filesystem::temp_directory_path() / "recording-XXXXXX").string();
        ::close(::mkstemp(name.data()));
        m_path = name;
        std::ofstream(m_path, std::ios::binary) << content;
    }
    ~TemporaryFile() { std::filesystem::remove(m_path); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

}  // namespace receiver_test
