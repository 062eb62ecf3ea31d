// Must not compile.

#include "kelarc/async.h"

void ask(kelarc::KelArc& modem)
{
    kelarc::async::request(modem, &kelarc::KelArc::setNotificationCB);
}
