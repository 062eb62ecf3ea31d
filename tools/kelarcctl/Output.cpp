#include "kelarcctl/Output.h"

#include <cstdio>

namespace kelarcctl {

void Output::result(const Json& json, const std::string& text) const
{
    // What the modem says need not be UTF-8.
    const std::string line = m_isJson ? json.dump(-1, ' ', true, Json::error_handler_t::replace) : text;
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

bool Output::finish()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

}  // namespace kelarcctl
