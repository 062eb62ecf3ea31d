// An application that is built without exceptions and without type information.

#include "kelarc/KelArc.h"
#include "kelarc/idle.h"
#include "kelarc/logsink.h"
#include "kelarc/names.h"

int main()
{
    kelarc::KelArc modem(kelarc::logsink::toStderr());
    modem.open([](int) {});
    modem.getCpuPower([&modem](int, kelarc::CPU_POWER) { modem.close(); });
    return kelarc::isIdle(modem) && modem.getNotificationCB() ? 0 : 1;
}
