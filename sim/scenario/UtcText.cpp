#include "scenario/UtcText.h"

namespace arcsim {

namespace {

using std::chrono::milliseconds;

/// Reads a text from its beginning; after one mismatch, everything fails.
class Reader
{
public:
    explicit Reader(std::string_view text) : m_rest(text) {}

    bool good() const { return m_good; }
    bool atEnd() const { return m_rest.empty(); }
    bool skip(char c)
    {
        if (m_rest.empty() || m_rest.front() != c)
            return false;
        m_rest.remove_prefix(1);
        return true;
    }
    void require(char c) { m_good = skip(c) && m_good; }
    int number(int digits, int lowest, int highest)
    {
        int value = 0;
        for (int i = 0; i < digits; ++i)
            value = 10 * value + digit().value_or(0);
        m_good = m_good && value >= lowest && value <= highest;
        return value;
    }
    /// The digits after the point: one or more, of which the first three count.
    int thousandths()
    {
        int value = 100 * digit().value_or(0);
        for (int unit = 10; !m_rest.empty() && isDigit(m_rest.front()); unit /= 10)
            value += unit * *digit();
        return value;
    }

private:
    static bool isDigit(char c) { return c >= '0' && c <= '9'; }
    std::optional<int> digit()
    {
        if (m_rest.empty() || !isDigit(m_rest.front())) {
            m_good = false;
            return std::nullopt;
        }
        const int value = m_rest.front() - '0';
        m_rest.remove_prefix(1);
        return value;
    }

    std::string_view m_rest;
    bool m_good = true;
};

bool isLeap(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysIn(int year, int month)
{
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeap(year) ? 29 : kDays[month - 1];
}

long long daysSince1970(int year, int month, int day)
{
    const int before = year - 1;
    long long days = 365LL * before + before / 4 - before / 100 + before / 400 - 719162;
    for (int each = 1; each < month; ++each)
        days += daysIn(year, each);
    return days + day - 1;
}

}  // namespace

std::optional<milliseconds> parseUtc(std::string_view text)
{
    Reader reader(text);
    const int year = reader.number(4, 1, 9999);
    reader.require('-');
    const int month = reader.number(2, 1, 12);
    reader.require('-');
    const int day = reader.number(2, 1, 31);
    reader.require('T');
    const int hour = reader.number(2, 0, 23);
    reader.require(':');
    const int minute = reader.number(2, 0, 59);
    reader.require(':');
    const int second = reader.number(2, 0, 59);
    const int fraction = reader.skip('.') ? reader.thousandths() : 0;
    int offsetMinutes = 0;
    if (!reader.skip('Z') && !reader.atEnd()) {
        const bool east = reader.skip('+');
        if (!east)
            reader.require('-');
        offsetMinutes = 60 * reader.number(2, 0, 14);
        reader.require(':');
        offsetMinutes = (east ? 1 : -1) * (offsetMinutes + reader.number(2, 0, 59));
    }
    if (!reader.good() || !reader.atEnd() || day > daysIn(year, month))
        return std::nullopt;
    const long long minutes = (24 * daysSince1970(year, month, day) + hour) * 60 + minute - offsetMinutes;
    return milliseconds((60 * minutes + second) * 1000 + fraction);
}

}  // namespace arcsim
