#include "nmea/NmeaReader.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace nmea {
namespace {

// The standard says 82; receivers exceed it if a position has many digits. Anything longer than this is noise.
constexpr std::size_t kLongestSentence = 512;

bool isPrintable(char c)
{
    return c >= ' ' && c <= '~';
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

Sentence sentenceOf(std::string_view body, std::uint64_t position)
{
    Sentence sentence;
    sentence.position = position;
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
        if (c == '\r' || c == '\n') {
            endLine(sentences);
        } else if (c == '$') {
            endText(sentences);
            m_text = c;
        } else if (!isPrintable(c)) {
            endText(sentences);
            m_hasGarbage = true;
        } else if (m_text.empty() || m_text.size() == kLongestSentence) {
            m_text.clear();
            m_hasGarbage = true;
        } else {
            m_text += c;
        }
        ++m_position;
    }
    return sentences;
}

std::vector<Sentence> NmeaReader::finish()
{
    std::vector<Sentence> sentences;
    endLine(sentences);
    return sentences;
}

void NmeaReader::endLine(std::vector<Sentence>& sentences)
{
    endText(sentences);
    m_counters.garbage += std::exchange(m_hasGarbage, false) ? 1 : 0;
}

void NmeaReader::endText(std::vector<Sentence>& sentences)
{
    if (m_text.empty())
        return;
    const std::string text = std::exchange(m_text, {});
    const std::size_t star = text.rfind('*');
    const auto checksum = star == std::string::npos ? std::nullopt : hexOf(std::string_view(text).substr(star + 1));
    const std::string_view body = std::string_view(text).substr(1, checksum ? star - 1 : std::string::npos);
    const bool hasAddress = !body.empty() && body.front() != ',';
    if (!checksum || !hasAddress) {
        m_hasGarbage = true;
    } else if (checksumOf(body) != *checksum) {
        ++m_counters.wrongChecksums;
    } else {
        ++m_counters.sentences;
        sentences.push_back(sentenceOf(body, m_position - text.size()));
    }
}

}  // namespace nmea
