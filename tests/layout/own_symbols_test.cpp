// An executable's own ARC_* symbols take priority over those of the library that libKelArc.so was linked with. Tests of
// applications with a stand-in client library rely on this.

#include "arc/ArcRilD.h"
#include "kelarc/KelArc.h"
#include "support/Await.h"

#include <atomic>
#include <gtest/gtest.h>

namespace {

std::atomic<int> g_calls{0};

int called()
{
    ++g_calls;
    return 0;
}

}  // namespace

extern "C" {
int ARC_SetNotificationMethod(int)
{
    return called();
}
int ARC_Open()
{
    return called();
}
int ARC_Close()
{
    return called();
}
int ARC_RegisterNotification(ArcNotificationHandler)
{
    return called();
}
const char* ARC_GetArcVersion()
{
    return called() == 0 ? "version of the executable's own" : nullptr;
}
int ARC_GetRilVersion(char*, char*, int)
{
    return called();
}
int ARC_EnableLogging(int, const char*)
{
    return called();
}
int ARC_AtcTunneling(const char*, char*)
{
    return called();
}
int ARC_CheckModuleSetting(const char*, const char*, char*, int, int*)
{
    return called();
}
int ARC_StartGNSSraw(char*, int)
{
    return called();
}
int ARC_StopGNSS()
{
    return called();
}
int ARC_ForceStopGNSS()
{
    return called();
}
int ARC_ResetAGNSS()
{
    return called();
}
int ARC_CurrentLSTA(int, LstaInfo*)
{
    return called();
}
int ARC_EnableLSTA(int, bool, int)
{
    return called();
}
}

TEST(AnExecutable, ReplacesTheClientLibraryByExportingItsSymbols)
{
    kelarc::KelArc modem([](int, const char*) {});
    support::Await<int> opened;
    support::Await<int, std::string> version;
    support::Await<int> closed;
    modem.setNotificationCB([](kelarc::NOTIFY_ID, void*, int) {});
    modem.open(opened.callback());
    ASSERT_TRUE(opened.wait(std::chrono::seconds(30)));
    modem.getArcVersion(version.callback());
    modem.getRilVersion([](int, kelarc::RilVersion&&) {});
    modem.enableLogging(kelarc::LOGGING_ZONE{1}, "", [](int) {});
    modem.ATcmd("AT", [](int, std::string&&) {});
    modem.setCpuPsm(true, [](int, bool) {});
    modem.startRawGNSS([](int, std::string&&) {});
    modem.forceStopGNSS([](int) {});
    modem.resetAGNSS([](int) {});
    modem.setLstaGnssStatus(kelarc::lsta::TECH::GPS, true, 0, {}, {});
    support::Await<int, bool, int> lsta;
    modem.getLstaGnss(kelarc::lsta::TECH::GPS, lsta.callback());  // answers (0, false, 0): the record names no system
    ASSERT_TRUE(lsta.wait(std::chrono::seconds(30)));
    support::Await<int> stopped;
    modem.stopGNSS(stopped.callback());
    ASSERT_TRUE(stopped.wait(std::chrono::seconds(30)));
    modem.close(closed.callback());
    ASSERT_TRUE(closed.wait(std::chrono::seconds(30)));
    EXPECT_EQ(std::get<1>(version.values()), "version of the executable's own");
    EXPECT_EQ(g_calls, 15);
}
