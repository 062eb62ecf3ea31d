// Asks the modem for one setting.
//
// It handles no signals, since it takes a second: Ctrl-C ends it at once, the modem is not closed, and what was open is
// left to the RIL daemon. A program that runs longer closes the modem first, as examples/navigator does.

#include "kelarc/KelArc.h"
#include "kelarc/logsink.h"

#include <cstdio>
#include <future>

int main()
{
    std::promise<int> opened, read, closed;  // before the modem: its worker has ended when they are destroyed
    kelarc::KelArc modem(kelarc::logsink::toStderr());

    modem.open([&](int code) { opened.set_value(code); });
    opened.get_future().wait();
    modem.getMinElevation([&](int code, unsigned char elevation) {
        std::printf("Satellites below %d degrees are not used.\n", elevation);
        read.set_value(code);
    });
    const int code = read.get_future().get();  // before closing, which would take its modem away
    modem.close([&](int result) { closed.set_value(result); });
    closed.get_future().wait();
    return code;
}
