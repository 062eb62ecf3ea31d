// The simulator's lists of the client library's functions against the library's own declarations.

#include "host/Request.h"
#include "modem/Requests.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

using arcsim::Argument;
using arcsim::Function;
using arcsim::indexOf;
using arcsim::parametersOf;
using Kind = Argument::Kind;

struct Declared
{
    std::string name;
    std::vector<std::pair<std::string, Kind>> parameters;
};

std::vector<Declared> declarations()
{
    const std::map<std::string, Kind> kinds{{"int", Kind::number},
                                            {"bool", Kind::flag},
                                            {"const char*", Kind::text},
                                            {"char*", Kind::pointer},
                                            {"int*", Kind::pointer},
                                            {"LstaInfo*", Kind::pointer},
                                            {"ArcNotificationHandler", Kind::pointer}};
    std::ifstream file(KELARC_ARC_HEADER);
    const std::regex function(R"(^(?:int|const char\*) (ARC_\w+)\((.*)\);$)");
    const std::regex parameter(R"(([\w *]+?) ?(\w+)(?:, |$))");
    std::vector<Declared> declared;
    for (std::string line; std::getline(file, line);) {
        std::smatch match;
        if (!std::regex_match(line, match, function))
            continue;
        declared.push_back({match[1], {}});
        const std::string list = match[2] == "void" ? "" : match[2].str();
        for (std::sregex_iterator each(list.begin(), list.end(), parameter), end; each != end; ++each)
            declared.back().parameters.emplace_back((*each)[2], kinds.at((*each)[1]));
    }
    return declared;
}

TEST(Functions, StandInTheOrderOfTheirDeclarations)
{
    const std::vector<Declared> declared = declarations();
    ASSERT_EQ(declared.size(), 15U) << KELARC_ARC_HEADER;
    for (std::size_t i = 0; i < declared.size(); ++i) {
        EXPECT_EQ(arcsim::modem::kRequests[i].name, declared[i].name);
        EXPECT_EQ(arcsim::modem::findRequest(declared[i].name), i);
    }
    EXPECT_EQ(arcsim::kFunctions, 15U);
    EXPECT_EQ(arcsim::modem::kRequests.size(), 15U);
}

TEST(Functions, HaveTheParametersOfTheirDeclarations)
{
    std::size_t index = 0;
    for (const Declared& declared : declarations()) {
        const auto& parameters = parametersOf(static_cast<Function>(index++));
        ASSERT_EQ(parameters.size(), declared.parameters.size()) << declared.name;
        for (std::size_t i = 0; i < parameters.size(); ++i) {
            EXPECT_EQ(parameters[i].name, declared.parameters[i].first) << declared.name;
            EXPECT_EQ(parameters[i].kind, declared.parameters[i].second) << declared.name << ' ' << parameters[i].name;
        }
    }
    EXPECT_EQ(index, 15U);
}

TEST(Functions, AreKnownByTheirNames)
{
    const std::pair<Function, const char*> names[] = {
        {Function::SetNotificationMethod, "ARC_SetNotificationMethod"},
        {Function::Open, "ARC_Open"},
        {Function::Close, "ARC_Close"},
        {Function::RegisterNotification, "ARC_RegisterNotification"},
        {Function::GetArcVersion, "ARC_GetArcVersion"},
        {Function::GetRilVersion, "ARC_GetRilVersion"},
        {Function::EnableLogging, "ARC_EnableLogging"},
        {Function::AtcTunneling, "ARC_AtcTunneling"},
        {Function::CheckModuleSetting, "ARC_CheckModuleSetting"},
        {Function::StartGNSSraw, "ARC_StartGNSSraw"},
        {Function::StopGNSS, "ARC_StopGNSS"},
        {Function::ForceStopGNSS, "ARC_ForceStopGNSS"},
        {Function::ResetAGNSS, "ARC_ResetAGNSS"},
        {Function::CurrentLSTA, "ARC_CurrentLSTA"},
        {Function::EnableLSTA, "ARC_EnableLSTA"},
    };
    for (const auto& [function, name] : names)
        EXPECT_EQ(arcsim::modem::kRequests[indexOf(function)].name, name);
    EXPECT_EQ(arcsim::modem::findRequest("ARC_open"), std::nullopt);
    EXPECT_EQ(arcsim::modem::findRequest(""), std::nullopt);
}

TEST(Arguments, ShowWhatTheyAre)
{
    EXPECT_EQ(Argument::of(-7).shown(), "-7");
    EXPECT_EQ(Argument::of(true).shown(), "1");
    EXPECT_EQ(Argument::of(false).shown(), "0");
    EXPECT_EQ(Argument::of("AT").shown(), "AT");
    EXPECT_EQ(Argument::of("").shown(), "");
    EXPECT_EQ(Argument::of(nullptr).shown(), "null");
    EXPECT_EQ(Argument::pointer(true).shown(), "set");
    EXPECT_EQ(Argument::pointer(false).shown(), "null");
    EXPECT_TRUE(Argument::of(true).isTrue());
    EXPECT_FALSE(Argument::of(false).isTrue());
}

}  // namespace
