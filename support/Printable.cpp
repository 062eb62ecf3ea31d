#include "support/Printable.h"

#include "kelarc/logsink/Printable.h"

namespace support {

std::string printable(std::string_view text)
{
    return kelarc::logsink::printable(text);
}

std::size_t lengthOfUtf8(std::string_view text)
{
    std::size_t good = 0;
    while (const std::size_t length = kelarc::logsink::detail::utf8Length(text.substr(good)))
        good += length;
    return good;
}

}  // namespace support
