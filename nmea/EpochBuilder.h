#pragma once

#include "nmea/Epoch.h"
#include "nmea/NmeaReader.h"

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace nmea {

/// Puts the sentences of one moment together.
///
/// A sentence with another time begins the next epoch; while the receiver does not know the time, so does a sentence
/// that has been there already. Satellites stay as they were in epochs that say nothing about them.
class EpochBuilder
{
public:
    /// The epoch that has become complete because this sentence begins the next one.
    std::optional<Epoch> add(const Sentence& sentence);

    /// The present epoch, because the receiver has fallen silent. What still comes of it is not given out again.
    std::optional<Epoch> flush();

    /// There are sentences that have not been given out.
    bool isPending() const { return !m_given && !m_seen.empty(); }

private:
    using SatelliteNumbers = std::array<std::set<int>, kSystemCount>;

    bool beginsEpoch(const Sentence& sentence, const std::string& key) const;
    void begin();
    Epoch finish();

    void addRmc(const Sentence& sentence);
    void addGga(const Sentence& sentence);
    void addVtg(const Sentence& sentence);
    void addGsa(const Sentence& sentence);
    void addGsv(const Sentence& sentence);

    Epoch m_epoch;
    std::set<std::string> m_seen;  ///< what this epoch has, by address and, in rows of sentences, place
    bool m_given = false;
    std::optional<Fix> m_gsaFix;
    bool m_hasUsed = false;  ///< this epoch told which satellites are used
    bool m_hasView = false;  ///< this epoch told which satellites are in view
    SatelliteNumbers m_used;
    std::array<std::map<int, Satellite>, kSystemCount> m_view;  ///< by satellite number
};

}  // namespace nmea
