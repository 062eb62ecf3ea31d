// The required form of lines; greetings, events, and the numbers of calls.

#include "sim/protocol_support.h"

#include <gtest/gtest.h>

namespace {

using arcsim::eventMessage;
using arcsim::EventMessage;
using arcsim::eventOf;
using arcsim::Hello;
using arcsim::helloMessage;
using arcsim::helloOf;
using arcsim::idOf;
using arcsim::Json;
using arcsim::lineOf;
using arcsim::messageOf;
using protocol_test::parsed;
using protocol_test::refusal;

TEST(ProtocolMessages, AreObjects)
{
    EXPECT_EQ(messageOf("{}"), Json::object());
    EXPECT_EQ(messageOf(" {\"a\":[1,{\"b\":null}]}\r").dump(), R"({"a":[1,{"b":null}]})");
    const std::string why = "a line is no JSON object; accepted: one object a line, at most 65536 bytes";
    for (const char* const line :
         {"", " ", "[]", "1", "null", "\"{}\"", "{", "}", "{}{}", "{} x", "{'a':1}", "{\"a\":}", "{\"a\":1,}",
          "{\"a\":01}", "{\"a\":1e999}", "{\"a\":\"\xFF\"}", "\xEF\xBB", "nul"})
        EXPECT_EQ(refusal([&] { messageOf(line); }), why) << line;
    using namespace std::string_literals;
    for (const std::string& line : {"{}\0"s, "{}\0{}"s, "{\0}"s, "\0{}"s})
        EXPECT_EQ(refusal([&] { messageOf(line); }), why) << line;
}

TEST(ProtocolMessages, NestAtMost32Deep)
{
    const auto nested = [](std::size_t depth) {
        return "{\"a\":" + std::string(depth - 1, '[') + std::string(depth - 1, ']') + "}";
    };
    EXPECT_EQ(messageOf(nested(32)).dump(), nested(32));
    const std::string why = "a line nests too deeply; accepted: objects and arrays at most 32 deep";
    EXPECT_EQ(refusal([&] { messageOf(nested(33)); }), why);
    EXPECT_EQ(refusal([&] { messageOf("{\"a\":" + std::string(65000, '[')); }), why);
    std::string objects;
    for (int i = 0; i < 33; ++i)
        objects += "{\"a\":";
    EXPECT_EQ(refusal([&] { messageOf(objects); }), why);
}

TEST(ProtocolMessages, KeepTheirMembersInOrder)
{
    EXPECT_EQ(lineOf(messageOf(R"({"z":1,"a":{"y":2,"b":3}})")), "{\"z\":1,\"a\":{\"y\":2,\"b\":3}}\n");
}

TEST(ProtocolMessages, AreOneLineWhateverIsInThem)
{
    EXPECT_EQ(lineOf({{"a", "\n\r\x7F\""}}), "{\"a\":\"\\n\\r\x7F\\\"\"}\n");
    EXPECT_EQ(lineOf({{"a", "no\xFFtext"}}), "{\"a\":\"no\xEF\xBF\xBDtext\"}\n");
}

TEST(ProtocolIds, AreWholeNumbersUpTo2To53)
{
    const auto id = [](const std::string& text) { return idOf(parsed(R"({"id":)" + text + "}")); };
    EXPECT_EQ(id("0"), 0);
    EXPECT_EQ(id("7"), 7);
    EXPECT_EQ(id("9007199254740992"), 9007199254740992);
    const std::string accepted = "; accepted: a whole number from 0 to 9007199254740992";
    for (const char* const text :
         {"9007199254740993", "18446744073709551615", "-1", "-9223372036854775808", "0.5", "1.0", "\"7\"", "null"})
        EXPECT_EQ(refusal([&] { id(text); }), "id: " + std::string(text) + " is not accepted" + accepted);
    EXPECT_EQ(refusal([] { idOf(Json::object()); }), "id: missing" + accepted);
}

TEST(ProtocolHello, IsWrittenAndRead)
{
    const Hello hello{"na\xFFme", 123, true, false};
    const std::string line =
        "{\"hello\":\"client\",\"name\":\"na\xC3\xBFme\",\"pid\":123,\"open\":true,\"handler\":false}\n";
    EXPECT_EQ(lineOf(helloMessage(hello)), line);
    const Hello read = helloOf(parsed(line));
    EXPECT_EQ(read.name, "na\xFFme");
    EXPECT_EQ(read.pid, 123);
    EXPECT_TRUE(read.isOpen);
    EXPECT_FALSE(read.hasHandler);
}

TEST(ProtocolHello, TellsOpenAndHandlerApart)
{
    EXPECT_EQ(lineOf(helloMessage({"", -1, false, true})),
              "{\"hello\":\"client\",\"name\":\"\",\"pid\":-1,\"open\":false,\"handler\":true}\n");
    const Hello read = helloOf(parsed(R"({"handler":true,"open":false,"pid":1,"name":"","hello":"client"})"));
    EXPECT_FALSE(read.isOpen);
    EXPECT_TRUE(read.hasHandler);
}

TEST(ProtocolHello, NeedsAllOfItsMembers)
{
    const Json whole = helloMessage({"a", 1, false, false});
    const auto with = [&](const char* key, const Json& value) {
        Json message = whole;
        message[key] = value;
        return refusal([&] { helloOf(message); });
    };
    const auto without = [&](const char* key) {
        Json message = whole;
        message.erase(key);
        return refusal([&] { helloOf(message); });
    };
    const std::string text = "; accepted: a text of characters up to U+00FF";
    const std::string number = "; accepted: a whole number from -2147483648 to 2147483647";
    EXPECT_EQ(with("hello", "arcsim"), "hello: \"arcsim\" is not accepted; accepted: \"client\"");
    EXPECT_EQ(with("hello", 1), "hello: 1 is not accepted; accepted: \"client\"");
    EXPECT_EQ(with("name", 1), "name: 1 is not accepted" + text);
    EXPECT_EQ(without("name"), "name: missing" + text);
    EXPECT_EQ(with("pid", "1"), "pid: \"1\" is not accepted" + number);
    EXPECT_EQ(with("pid", 4294967296), "pid: 4294967296 is not accepted" + number);
    EXPECT_EQ(without("pid"), "pid: missing" + number);
    EXPECT_EQ(with("open", 1), "open: 1 is not accepted; accepted: true or false");
    EXPECT_EQ(without("open"), "open: missing; accepted: true or false");
    EXPECT_EQ(with("handler", nullptr), "handler: null is not accepted; accepted: true or false");
    EXPECT_EQ(without("handler"), "handler: missing; accepted: true or false");
}

TEST(ProtocolEvents, AreWrittenAndRead)
{
    EXPECT_EQ(lineOf(eventMessage({34, {0x00, 0xAB, 0xFF}})), "{\"event\":34,\"data\":\"00abff\"}\n");
    EXPECT_EQ(lineOf(eventMessage({-1, {}})), "{\"event\":-1,\"data\":\"\"}\n");
    const EventMessage read = eventOf(parsed(R"({"event":2147483647,"data":"00ABff"})"));
    EXPECT_EQ(read.id, 2147483647);
    EXPECT_EQ(read.payload, (std::vector<unsigned char>{0x00, 0xAB, 0xFF}));
    EXPECT_TRUE(eventOf(parsed(R"({"event":0,"data":""})")).payload.empty());
}

TEST(ProtocolEvents, NeedANumberAndPairsOfDigits)
{
    const auto refused = [](const std::string& message) { return refusal([&] { eventOf(parsed(message)); }); };
    EXPECT_EQ(refused(R"({"event":1})"), "data: missing; accepted: a text of characters up to U+00FF");
    EXPECT_EQ(refused(R"({"event":1,"data":1})"),
              "data: 1 is not accepted; accepted: a text of characters up to U+00FF");
    EXPECT_EQ(refused(R"({"event":1,"data":"0"})"),
              "data: \"0\" is not accepted; accepted: pairs of hexadecimal digits");
    EXPECT_EQ(refused(R"({"event":1,"data":"0g"})"),
              "data: \"0g\" is not accepted; accepted: pairs of hexadecimal digits");
    EXPECT_EQ(refused(R"({"data":""})"), "event: missing; accepted: a whole number from -2147483648 to 2147483647");
    EXPECT_EQ(refused(R"({"event":"1","data":""})"),
              "event: \"1\" is not accepted; accepted: a whole number from -2147483648 to 2147483647");
}

}  // namespace
