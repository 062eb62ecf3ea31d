#pragma once

#include "kelarcctl/ModemChecks.h"
#include "kelarcctl/Reception.h"

#include <chrono>
#include <optional>
#include <string>

namespace kelarcctl {

/// The doctor's checks of the receiver's output, to be called in this order.
class ReceptionChecks
{
public:
    ReceptionChecks(Session& session, const ModemChecks& modem) : m_session(session), m_modem(modem) {}

    Finding start();
    Finding arrive();
    Finding correct() const;
    Finding inView();
    Finding signal();
    Finding fix() const;

private:
    template <typename Enough>
    bool readUntil(std::chrono::milliseconds limit, const Enough& isEnough);
    bool isFixed() const;
    bool isEverySystemHeard() const;
    std::chrono::seconds searchedSince(Session::Clock::time_point begin) const;

    Session& m_session;
    const ModemChecks& m_modem;
    std::chrono::seconds m_searched{0};
    std::string m_path{};
    std::optional<Reception> m_reception{};
};

}  // namespace kelarcctl
