#pragma once

#include "modem/Lsta.h"
#include "modem/ResultCode.h"

#include <optional>
#include <string>

namespace arcsim::modem {

/// The modem's answer to a request; only the requested fields are set.
struct Reply
{
    int code = kSuccess;
    std::optional<std::string> text{};
    std::optional<std::string> secondText{};
    std::optional<int> indicator{};
    std::optional<Lsta> lsta{};
};

inline Reply answer(int code, std::optional<std::string> text = {})
{
    return {code, std::move(text), {}, {}, {}};
}

}  // namespace arcsim::modem
