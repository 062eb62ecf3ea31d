#pragma once

#include "protocol/Messages.h"

#include <functional>
#include <string>

namespace protocol_test {

inline arcsim::Json parsed(const std::string& text)
{
    return arcsim::Json::parse(text);
}

/// What a refusal says; "accepted" when there was none.
inline std::string refusal(const std::function<void()>& read)
{
    try {
        read();
    } catch (const arcsim::ProtocolError& error) {
        return error.what();
    }
    return "accepted";
}

}  // namespace protocol_test
