#include "kelarc/KelArc.h"

#include <cstdio>
#include <future>

int main()
{
    std::promise<int> opened, read, closed;
    kelarc::KelArc modem([](int, const char*) {});

    modem.open([&](int code) { opened.set_value(code); });
    opened.get_future().wait();
    modem.getGnssFrequency([&](int code, kelarc::gnss::FREQUENCY period) {
        std::printf("a sentence every %s\n", period == kelarc::gnss::FREQUENCY::EVERY_1000_MS ? "second" : "?");
        read.set_value(code);
    });
    const int code = read.get_future().get();
    modem.close([&](int result) { closed.set_value(result); });
    closed.get_future().wait();
    return code;
}
