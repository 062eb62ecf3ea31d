#include "nmea/NmeaReader.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace nmea {
namespace {

// The standard says 82; receivers exceed it where a position has many digits. Longer is not text but noise.
constexpr std::size_t kLongestLine = 512;

bool isPrintable(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

std::optional<unsigned> hexOf(std::string_view digits)
{
    unsigned value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (digits.size() != 2 || error != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    return value;
}

unsigned checksumOf(std::string_view body)
{
    unsigned sum = 0;
    for (const char c : body)
        sum ^= static_cast<unsigned char>(c);
    return sum;
}

Sentence sentenceOf(std::string_view body)
{
    Sentence sentence;
    const std::size_t addressEnd = std::min(body.find(','), body.size());
    const std::string address(body.substr(0, addressEnd));
    const bool standard = address.size() == 5 && address.front() != 'P';
    sentence.talker = standard ? address.substr(0, 2) : "";
    sentence.formatter = standard ? address.substr(2) : address;
    for (std::size_t begin = addressEnd; begin < body.size();) {
        const std::size_t end = std::min(body.find(',', begin + 1), body.size());
        sentence.fields.emplace_back(body.substr(begin + 1, end - begin - 1));
        begin = end;
    }
    return sentence;
}

}  // namespace

std::vector<Sentence> NmeaReader::read(std::string_view bytes)
{
    std::vector<Sentence> sentences;
    for (const char c : bytes) {
        if (c == '\n') {
            endLine(sentences);
        } else if (m_line.size() < kLongestLine) {
            m_line += c;
        } else {
            m_tooLong = true;
        }
    }
    return sentences;
}

void NmeaReader::endLine(std::vector<Sentence>& sentences)
{
    std::string line = std::move(m_line);
    m_line.clear();
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    const bool tooLong = std::exchange(m_tooLong, false);
    if (line.empty() && !tooLong)
        return;

    const std::size_t star = line.rfind('*');
    const auto checksum = star == std::string::npos ? std::nullopt : hexOf(std::string_view(line).substr(star + 1));
    if (tooLong || line.front() != '$' || !checksum || !isPrintable(line)) {
        ++m_counters.garbage;
        return;
    }
    const std::string_view body = std::string_view(line).substr(1, star - 1);
    if (checksumOf(body) != *checksum) {
        ++m_counters.wrongChecksums;
        return;
    }
    ++m_counters.sentences;
    sentences.push_back(sentenceOf(body));
}

}  // namespace nmea
