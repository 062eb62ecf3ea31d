#pragma once

#include "arc/ArcRilD.h"
#include "modem/Lsta.h"

#include <cstring>
#include <vector>

namespace arcsim {

inline LstaInfo recordOf(const modem::Lsta& lsta)
{
    LstaInfo record{};
    record.indicator = lsta.indicator;
    record.status = lsta.status;
    record.value = lsta.value;
    return record;
}

/// LSTA as the payload of its event.
inline std::vector<unsigned char> bytesOf(const modem::Lsta& lsta)
{
    const LstaInfo record = recordOf(lsta);
    std::vector<unsigned char> bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

}  // namespace arcsim
