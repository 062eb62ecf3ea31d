#include "host/Request.h"

#include <array>

namespace arcsim {

std::string Argument::shown() const
{
    switch (kind) {
    case Kind::number:
    case Kind::flag:
        return std::to_string(number);
    case Kind::text:
        return set ? text : "null";
    case Kind::pointer:
        break;
    }
    return set ? "set" : "null";
}

const std::vector<Parameter>& parametersOf(Function function)
{
    using Kind = Argument::Kind;
    // Never destroyed: threads of the simulation may still read it while the process exits.
    static const auto* const table = new std::array<std::vector<Parameter>, kFunctions>{{
        {{"method", Kind::number}},                                                          // SetNotificationMethod
        {},                                                                                  // Open
        {},                                                                                  // Close
        {{"handler", Kind::pointer}},                                                        // RegisterNotification
        {},                                                                                  // GetArcVersion
        {{"primary", Kind::pointer}, {"secondary", Kind::pointer}, {"size", Kind::number}},  // GetRilVersion
        {{"zone", Kind::number}, {"text", Kind::text}},                                      // EnableLogging
        {{"command", Kind::text}, {"answer", Kind::pointer}},                                // AtcTunneling
        {{"key", Kind::text},
         {"value", Kind::text},
         {"reply", Kind::pointer},
         {"replySize", Kind::number},
         {"writeIndicator", Kind::pointer}},                                                       // CheckModuleSetting
        {{"text", Kind::pointer}, {"size", Kind::number}},                                         // StartGNSSraw
        {},                                                                                        // StopGNSS
        {},                                                                                        // ForceStopGNSS
        {},                                                                                        // ResetAGNSS
        {{"arcTechnologyId", Kind::number}, {"out", Kind::pointer}},                               // CurrentLSTA
        {{"arcTechnologyId", Kind::number}, {"enable", Kind::flag}, {"parameter", Kind::number}},  // EnableLSTA
    }};
    return table->at(indexOf(function));
}

}  // namespace arcsim
