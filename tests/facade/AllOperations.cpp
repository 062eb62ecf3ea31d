#include "facade/AllOperations.h"

using kelarc::KelArc;

namespace {

constexpr bool kCopies = true;
constexpr bool kMoves = false;

}  // namespace

const std::vector<Operation>& answeringOperations()
{
    using namespace kelarc;
    static const std::vector<Operation> operations = {
        {"close", requestOf(&KelArc::close), kCopies},
        {"getArcVersion", requestOf(&KelArc::getArcVersion), kMoves},
        {"getRilVersion", requestOf(&KelArc::getRilVersion), kMoves},
        {"enableLogging", requestOf(&KelArc::enableLogging, LOGGING_ZONE{1}, std::string("x")), kMoves},
        {"ATcmd", requestOf(&KelArc::ATcmd, std::string("AT")), kMoves},
        {"getModuleSetting", requestOf(&KelArc::getModuleSetting, std::string("Power/Cpu")), kCopies},
        {"setModuleSetting", requestOf(&KelArc::setModuleSetting, std::string("Power/Cpu"), std::string("\"std\"")),
         kCopies},
        {"getCpuPower", requestOf(&KelArc::getCpuPower), kCopies},
        {"setCpuPower", requestOf(&KelArc::setCpuPower, CPU_POWER{2}), kCopies},
        {"getCpuPsm", requestOf(&KelArc::getCpuPsm), kCopies},
        {"setCpuPsm", requestOf(&KelArc::setCpuPsm, true), kCopies},
        {"getGnssFormat", requestOf(&KelArc::getGnssFormat), kCopies},
        {"setGnssFormat", requestOf(&KelArc::setGnssFormat, gnss::FORMAT{1}), kCopies},
        {"getDRSync", requestOf(&KelArc::getDRSync), kCopies},
        {"setDRSync", requestOf(&KelArc::setDRSync, true), kCopies},
        {"getGnssStatus", requestOf(&KelArc::getGnssStatus, gnss::SYSTEM{1}), kCopies},
        {"setGnssStatus", requestOf(&KelArc::setGnssStatus, gnss::SYSTEM{1}, true), kCopies},
        {"getSbasStatus", requestOf(&KelArc::getSbasStatus), kCopies},
        {"setSbasStatus", requestOf(&KelArc::setSbasStatus, true), kCopies},
        {"getGnssFrequency", requestOf(&KelArc::getGnssFrequency), kCopies},
        {"setGnssFrequency", requestOf(&KelArc::setGnssFrequency, gnss::FREQUENCY{1}), kCopies},
        {"getMinElevation", requestOf(&KelArc::getMinElevation), kCopies},
        {"setMinElevation", requestOf(&KelArc::setMinElevation, static_cast<unsigned char>(10)), kCopies},
        {"getRawMask", requestOf(&KelArc::getRawMask), kCopies},
        {"setRawMask", requestOf(&KelArc::setRawMask, static_cast<unsigned char>(10)), kCopies},
        {"getGnssRawVersion", requestOf(&KelArc::getGnssRawVersion), kCopies},
        {"startRawGNSS", requestOf(&KelArc::startRawGNSS), kMoves},
        {"stopGNSS", requestOf(&KelArc::stopGNSS), kMoves},
        {"forceStopGNSS", requestOf(&KelArc::forceStopGNSS), kMoves},
        {"resetAGNSS", requestOf(&KelArc::resetAGNSS), kMoves},
        {"getLstaGnss", requestOf(&KelArc::getLstaGnss, lsta::TECH{1}), kMoves},
    };
    return operations;
}
