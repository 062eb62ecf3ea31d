#include "kelarcctl/Advice.h"

#include <iterator>

namespace kelarcctl {

namespace {

constexpr bool kMayPass = true;
constexpr bool kStays = false;

constexpr const char* kOtherService =
    "The code belongs to SIM cards, calls, messages or data connections, not to GNSS.";
constexpr const char* kAskMaker = "Note the call and ask the modem's maker why it answers so.";
constexpr const char* kFindReception = "Try again where there is reception.";
constexpr const char* kCompareWithManual = "Compare the call with the modem's manual.";

constexpr Advice kAdvice[] = {
    {0, "The call has succeeded.", "Nothing is to be done.", kMayPass},
    {1, "The modem is not open, or the client library has lost its connection.",
     "Open the modem; if it was open, close it first.", kMayPass},
    {2, "The modem does not answer the client library in time: it is overloaded, hangs or has no power.",
     "See to the modem's power and its other users; if it stays, restart the modem.", kMayPass},
    {3, "The modem is off, or on its way up or down.", "Switch the modem on and wait until it is up.", kMayPass},
    {4, kOtherService, kAskMaker, kStays},
    {5, kOtherService, kAskMaker, kStays},
    {6, kOtherService, kAskMaker, kStays},
    {7, kOtherService, kAskMaker, kStays},
    {8, kOtherService, kAskMaker, kStays},
    {9, kOtherService, kAskMaker, kMayPass},
    {10, kOtherService, kAskMaker, kStays},
    {11, kOtherService, kAskMaker, kStays},
    {12, "The modem wants a mobile network for this, and has none.", kFindReception, kMayPass},
    {13, "The modem does not know this setting, value, zone or system.", kCompareWithManual, kStays},
    {14, "The client library misses an argument: its declarations are not those that this library was built for.",
     "Install a client library that fits, or compare the declarations as the guide's page on porting says.", kStays},
    {15, "The modem cannot do it yet, for instance while its engine starts.",
     "Wait: the library asks again for as long as the modem says so.", kMayPass},
    {16, "This modem has no such setting, or nothing to tell about it.", kCompareWithManual, kStays},
    {17, kOtherService, kAskMaker, kStays},
    {18, kOtherService, kAskMaker, kStays},
    {19, kOtherService, kAskMaker, kStays},
    {20, "The AT command, the key, the value or the logging text is too long.", "Shorten it.", kStays},
    {21, "The RIL daemon or the modem does not let this process do it.",
     "Run the program as a user who may use the RIL daemon; else find out who has locked the function.", kStays},
    {22, "The AT command, the key, the value or the logging text has a character that the modem does not take.",
     "Look at its quote marks, its line ends and letters that are no ASCII.", kStays},
    {23, "The engine does not run.", "Start the raw output first.", kStays},
    {24, "This modem or its firmware cannot do it.", "Use a modem or a firmware that can; asking again does not help.",
     kStays},
    {25, "Memory is short, in this process or in the RIL daemon.", "Find the process that takes it.", kMayPass},
    {26, "Another user of the modem has cancelled the request.",
     "Wait: the library asks again; if it stays, find that user.", kMayPass},
    {27, kOtherService, kAskMaker, kStays},
    {28, "The mobile network has rejected the request.", kFindReception, kMayPass},
    {29, "The modem has no room left.", "Delete on the modem what is not needed.", kStays},
    {30, kOtherService, kAskMaker, kMayPass},
    {31, "The RIL daemon does not run, or the connection to it is broken.",
     "Start the RIL daemon, or find out from its log why it ended.", kStays},
    {32, "The client library knows no more than that the call has failed.",
     "Switch on the client library's own log for this zone and look there.", kMayPass},
    {33, "The call has succeeded, but the answer is longer than the room for it.", "Take the answer as cut off.",
     kStays},
    {34, "The client library and the RIL daemon are of releases that do not belong together.",
     "Install a client library and a RIL daemon of the same release.", kStays},
    {35, kOtherService, kAskMaker, kMayPass},
    {36, kOtherService, kAskMaker, kStays},
    {37, kOtherService, kAskMaker, kStays},
    {38, "The modem does not allow it in its present state, or not to this process.",
     "Look at the modem's state; then at the rights of the process.", kMayPass},
    {39, "Other processes keep the RIL daemon busy.", "Try again later; find the process that asks so much.", kMayPass},
    {-1, "The library has no text for this code.", "Look it up in the client library's own documentation.", kMayPass},
};
static_assert(std::size(kAdvice) == kLastKnownCode + 2, "one for each code from 0 to 39, and one for all others");

}  // namespace

const Advice& adviceOn(int code)
{
    return kAdvice[code >= 0 && code <= kLastKnownCode ? code : kLastKnownCode + 1];
}

}  // namespace kelarcctl
