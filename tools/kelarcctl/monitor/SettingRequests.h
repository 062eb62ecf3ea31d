#pragma once

#include "kelarc/KelArc.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kelarcctl {

/// How a setting is read and written without waiting for the answer, which comes on one of the library's threads.
struct SettingRequest
{
    using Read = std::function<void(int code, std::optional<std::string> value)>;  ///< empty: not understood
    using Written = std::function<void(int code)>;

    std::string command;  ///< of settings()
    /// `words` are those that the setting accepts, in its order.
    std::function<void(kelarc::KelArc&, const std::vector<std::string>& words, Read)> read;
    std::function<void(kelarc::KelArc&, const std::vector<std::string>& words, const std::string& value, Written)>
        write{};
};

/// Throws std::out_of_range for a command that is no setting.
const SettingRequest& settingRequest(const std::string& command);

}  // namespace kelarcctl
