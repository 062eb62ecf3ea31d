// Asks the modem for one setting.
//
// It handles no signals, because it takes only a second: Ctrl-C ends it at once without closing the modem, and the RIL
// daemon must clean up. A program that runs longer closes the modem first, as examples/navigator does.

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
    const int code = read.get_future().get();  // wait before closing: the request needs an open modem
    modem.close([&](int result) { closed.set_value(result); });
    closed.get_future().wait();
    return code;
}
