#include "kelarcctl/Reception.h"

namespace kelarcctl {

void Reception::read()
{
    const std::string bytes = m_device.read();
    m_bytes += bytes.size();
    for (const nmea::Sentence& sentence : m_reader.read(bytes))
        take(m_builder.add(sentence));
}

void Reception::flush()
{
    take(m_builder.flush());
}

void Reception::take(const std::optional<nmea::Epoch>& epoch)
{
    if (!epoch)
        return;
    m_last = *epoch;
    ++m_epochs;
}

}  // namespace kelarcctl
