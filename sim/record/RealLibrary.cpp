#include "record/RealLibrary.h"

#include "record/Complaint.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <unistd.h>

namespace arcrecord {

namespace {

constexpr std::array<const char*, kFunctions> kNames{
    "ARC_SetNotificationMethod",
    "ARC_Open",
    "ARC_Close",
    "ARC_RegisterNotification",
    "ARC_GetArcVersion",
    "ARC_GetRilVersion",
    "ARC_EnableLogging",
    "ARC_AtcTunneling",
    "ARC_CheckModuleSetting",
    "ARC_StartGNSSraw",
    "ARC_StopGNSS",
    "ARC_ForceStopGNSS",
    "ARC_ResetAGNSS",
    "ARC_CurrentLSTA",
    "ARC_EnableLSTA",
};

/// Any address in this library.
const char g_own = 0;

bool isOwn(void* address)
{
    Dl_info own{};
    Dl_info other{};
    return dladdr(&g_own, &own) != 0 && dladdr(address, &other) != 0 && own.dli_fbase == other.dli_fbase;
}

}  // namespace

const char* nameOf(Function function)
{
    return kNames[static_cast<std::size_t>(function)];
}

void RealLibrary::find()
{
    const char* named = secure_getenv("ARCRECORD_LIBRARY");
    if (named != nullptr && *named == '\0')
        named = nullptr;
    void* const library = named == nullptr ? RTLD_NEXT : dlopen(named, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr && named != nullptr) {
        const char* const reason = dlerror();
        note("arcrecord: ARCRECORD_LIBRARY names '%s', which cannot be loaded: %s; accepted: the path of a "
             "libArcRilD.so; all calls answer 31\n",
             named, reason == nullptr ? "unknown reason" : reason);
        return;
    }
    std::array<char, 512> missing{};
    int length = 0;
    std::size_t found = 0;
    for (std::size_t i = 0; i < kFunctions; ++i) {
        void* const address = dlsym(library, kNames[i]);
        if (address != nullptr && !isOwn(address)) {
            m_functions[i] = address;
            ++found;
            Dl_info info{};
            if (dladdr(address, &info) != 0)
                m_path = info.dli_fname;
        } else {
            length += std::snprintf(missing.data() + length, missing.size() - static_cast<std::size_t>(length), "%s%s",
                                    length == 0 ? "" : ", ", kNames[i]);
        }
    }
    if (found == 0 && named != nullptr)
        note("arcrecord: ARCRECORD_LIBRARY names '%s', which has no functions to call; accepted: the path of a "
             "libArcRilD.so; all calls answer 31\n",
             named);
    else if (found == 0)
        note(
            "arcrecord: no libArcRilD.so to call is loaded; give its path in ARCRECORD_LIBRARY; all calls answer 31\n");
    else if (found < kFunctions)
        note("arcrecord: %s lacks %s; calls of what it lacks answer 31\n", path(), missing.data());
}

void RealLibrary::note(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(m_missed.data(), m_missed.size(), format, arguments);
    va_end(arguments);
}

void RealLibrary::complain() const
{
    arcrecord::complain(m_missed.data());
}

}  // namespace arcrecord
