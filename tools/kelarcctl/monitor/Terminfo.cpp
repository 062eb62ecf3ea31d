#include "kelarcctl/monitor/Terminfo.h"

#include <cstring>

// These headers define hundreds of macros, so only this file includes them.
#include <curses.h>
#include <term.h>

namespace kelarcctl {

std::string capability(const char* name)
{
    if (cur_term == nullptr)
        return "";
    const char* const text = ::tigetstr(const_cast<char*>(name));
    if (text == nullptr || text == reinterpret_cast<const char*>(-1))
        return "";
    std::string plain;
    for (const char* c = text; *c != '\0'; ++c) {
        if (std::strncmp(c, "$<", 2) == 0) {
            while (*c != '\0' && *c != '>')
                ++c;
            if (*c == '\0')
                break;
            continue;
        }
        plain += *c;
    }
    return plain;
}

}  // namespace kelarcctl
