#pragma once

#include "nmea/Epoch.h"
#include "nmea/NmeaReader.h"

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace nmea {

/// Puts the sentences of one moment together, whichever talkers they come from.
///
/// RMC, GGA, GNS and GLL with another time begin the next epoch; while the receiver does not know the time, a repeated
/// sentence begins it. If sources disagree about a moment, the last one with a position counts, latitude and longitude
/// together. In epochs without news about satellites these stay unchanged; so does the date, until midnight passes
/// without a new one.
class EpochBuilder
{
public:
    /// The epoch that has become complete because this sentence begins the next one.
    std::optional<Epoch> add(const Sentence& sentence);

    /// The present epoch, for when the receiver has fallen silent. Later sentences of this epoch are not given out.
    std::optional<Epoch> flush();

    /// True if there are sentences that have not been given out.
    bool isPending() const { return !m_given && !m_seen.empty(); }

private:
    using Numbers = std::set<int>;
    using Row = std::map<std::pair<System, int>, Satellite>;
    /// Time and date of ZDA, which may come ahead of its epoch, and without the fraction of the second.
    struct Calendar
    {
        int utcMs = 0;
        Date date{};
    };

    bool beginsEpoch(const Sentence& sentence, const std::string& key) const;
    void begin();
    Epoch finish();
    void finishTime();
    void takeDate();
    void finishSatellites();
    void addPosition(const Sentence& sentence, std::size_t first);
    void addRmc(const Sentence& sentence);
    void addGga(const Sentence& sentence);
    void addGll(const Sentence& sentence);
    void addGns(const Sentence& sentence);
    void addHeight(const Sentence& sentence);
    void addVtg(const Sentence& sentence);
    void addZda(const Sentence& sentence);
    void addGsa(const Sentence& sentence);
    void addGsv(const Sentence& sentence);

    Epoch m_epoch;
    std::set<std::string> m_seen;  ///< sentences of this epoch, by address and, in rows of sentences, place
    bool m_given = false;
    std::optional<Calendar> m_calendar;
    bool m_hasCalendar = false;   ///< this epoch told it
    std::optional<int> m_dateMs;  ///< the last time of an epoch, to notice midnight by
    bool m_hasDate = false;       ///< this epoch told the date
    std::optional<Fix> m_gsaFix;
    bool m_hasUsed = false;  ///< this epoch told which satellites are used
    bool m_hasView = false;  ///< this epoch told which satellites are in view
    std::array<Numbers, kSystemCount> m_used;
    std::map<std::string, Row> m_rows;  ///< those in view, by talker and signal
};

}  // namespace nmea
