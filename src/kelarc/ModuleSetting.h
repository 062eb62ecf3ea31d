#pragma once

namespace kelarc {

/// The result of reading a setting: the code, and the text that the modem wrote.
struct SettingReply
{
    int code = 0;
    char text[256] = {};
};

/// The result of writing a setting: the code, and whether the modem reported the change.
struct SettingWritten
{
    int code;
    bool changed;
};

}  // namespace kelarc
