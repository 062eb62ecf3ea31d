#pragma once

namespace kelarc {

/// What reading a setting has given: the code, and the text that the modem wrote.
struct SettingReply
{
    int code = 0;
    char text[256] = {};
};

/// What writing a setting has given: the code, and whether the modem reported the change.
struct SettingWritten
{
    int code;
    bool changed;
};

}  // namespace kelarc
