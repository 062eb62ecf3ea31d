// The effect of keys in the monitor.

#include "kelarcctl/monitor/Keys.h"

#include <gtest/gtest.h>

namespace kelarcctl {
namespace {

class Keys : public testing::Test
{
protected:
    Keys()
    {
        model.settings = {{"format", "F", "", "nmea, raw", "nmea"},
                          {"raw-version", "V", "", "", "1.0"},
                          {"min-elevation", "E", "", "a whole number from 5 to 45", "5"}};
    }

    Wish press(Key::Kind kind) { return kelarcctl::press(view, model, {kind}, roomy); }
    /// Of the last of them.
    Wish type(const std::string& characters)
    {
        Wish wish;
        for (const char c : characters)
            wish = kelarcctl::press(view, model, {Key::character, c}, roomy);
        return wish;
    }

    Model model{};
    View view{};
    bool roomy = false;
};

TEST_F(Keys, DigitsChooseAPanel)
{
    const Panel panels[] = {Panel::overview, Panel::signal, Panel::modem, Panel::tasks, Panel::events, Panel::help};
    for (int i = 0; i < 6; ++i) {
        type(std::to_string(i + 1));
        EXPECT_EQ(view.panel, panels[i]) << i;
    }
    type("0");
    EXPECT_EQ(view.panel, Panel::help) << "there is no room for all";
    roomy = true;
    type("0");
    EXPECT_EQ(view.panel, Panel::all);
    for (const char* const help : {"h", "?"}) {
        type("1");
        type(help);
        EXPECT_EQ(view.panel, Panel::help);
    }
}

TEST_F(Keys, TabGoesRound)
{
    press(Key::tab);
    EXPECT_EQ(view.panel, Panel::signal) << "all shows as the overview";
    press(Key::backTab);
    EXPECT_EQ(view.panel, Panel::overview);
    press(Key::backTab);
    EXPECT_EQ(view.panel, Panel::help);
    press(Key::tab);
    EXPECT_EQ(view.panel, Panel::overview);
    roomy = true;
    press(Key::backTab);
    EXPECT_EQ(view.panel, Panel::all);
    press(Key::backTab);
    EXPECT_EQ(view.panel, Panel::help);
}

TEST_F(Keys, AskForWhatTheFooterSays)
{
    EXPECT_EQ(type("q").kind, Wish::quit);
    EXPECT_EQ(type("g").kind, Wish::start);
    EXPECT_EQ(type("x").kind, Wish::stop);
    EXPECT_EQ(type("r").kind, Wish::read);
    EXPECT_EQ(type("z").kind, Wish::none);
    EXPECT_EQ(press(Key::enter).kind, Wish::none);
    EXPECT_FALSE(view.isPaused);
    type("p");
    EXPECT_TRUE(view.isPaused);
    type("p");
    EXPECT_FALSE(view.isPaused);
}

TEST_F(Keys, AWordIsChosenByArrows)
{
    type("ps");
    EXPECT_FALSE(view.isPaused) << "what is changed has to be seen";
    EXPECT_EQ(view.panel, Panel::modem);
    press(Key::enter);
    EXPECT_EQ(view.mode, View::Mode::value);
    EXPECT_EQ(view.words, (std::vector<std::string>{"nmea", "raw"}));
    press(Key::right);
    const Wish wish = press(Key::enter);
    EXPECT_EQ(wish.kind, Wish::write);
    EXPECT_EQ(wish.setting, 0U);
    EXPECT_EQ(wish.value, "raw");
    EXPECT_EQ(view.mode, View::Mode::setting);
    press(Key::escape);
    EXPECT_EQ(view.mode, View::Mode::watching);
}

TEST_F(Keys, WordsGoRoundAndBeginAtThePresentOne)
{
    model.settings[0].value = "raw";
    type("s");
    press(Key::enter);
    press(Key::down);
    EXPECT_EQ(press(Key::enter).value, "nmea");
    press(Key::enter);
    press(Key::up);
    EXPECT_EQ(press(Key::enter).value, "nmea");
}

TEST_F(Keys, WhatCannotBeWrittenIsPassedOver)
{
    type("s");
    press(Key::up);
    EXPECT_EQ(view.setting, 0U);
    press(Key::down);
    EXPECT_EQ(view.setting, 2U);
    press(Key::down);
    EXPECT_EQ(view.setting, 2U);
    press(Key::up);
    EXPECT_EQ(view.setting, 0U);
}

TEST_F(Keys, ANumberIsTypedOrCounted)
{
    type("s");
    press(Key::down);
    press(Key::enter);
    press(Key::down);  // not below the lowest
    EXPECT_EQ(view.typed, "5");
    press(Key::up);
    EXPECT_EQ(press(Key::enter).value, "6");
    press(Key::enter);
    press(Key::backspace);
    type("3x0");
    const Wish wish = press(Key::enter);
    EXPECT_EQ(wish.setting, 2U);
    EXPECT_EQ(wish.value, "30");
}

TEST_F(Keys, TheFirstDigitReplacesTheNumber)
{
    model.settings[2].value = "12";
    type("s");
    press(Key::down);
    press(Key::enter);
    EXPECT_TRUE(view.replaces);
    type("34");
    EXPECT_EQ(view.typed, "34");
    EXPECT_FALSE(view.replaces);
    press(Key::up);
    EXPECT_TRUE(view.replaces) << "what an arrow has made is a whole number again";
    type("7");
    EXPECT_EQ(press(Key::enter).value, "7");
    press(Key::enter);
    EXPECT_EQ(view.typed, "12");
    EXPECT_TRUE(view.replaces);
    press(Key::backspace);
    type("3");
    EXPECT_EQ(view.typed, "13") << "after a correction digits go on";
    press(Key::clear);
    EXPECT_EQ(view.typed, "");
    type("20");
    EXPECT_EQ(press(Key::enter).value, "20");
}

TEST_F(Keys, ANumberIsMovedByPagesAndToItsEnds)
{
    model.settings[2].value = "12";
    type("s");
    press(Key::end);
    EXPECT_EQ(view.setting, 2U);
    press(Key::enter);
    const std::pair<Key::Kind, const char*> moves[] = {
        {Key::pageUp, "22"},   {Key::right, "23"}, {Key::end, "45"}, {Key::pageUp, "45"},
        {Key::pageDown, "35"}, {Key::left, "34"},  {Key::home, "5"}, {Key::pageDown, "5"},
    };
    for (const auto& [key, expected] : moves) {
        press(key);
        EXPECT_EQ(view.typed, expected) << key;
    }
    press(Key::clear);
    press(Key::up);
    EXPECT_EQ(view.typed, "5");
}

TEST_F(Keys, AWordIsChosenByItsFirstLetterOrDigit)
{
    model.settings[0] = {"period", "P", "ms", "1000, 500, 200, 100", "1000"};
    type("s");
    press(Key::enter);
    type("2");
    EXPECT_EQ(view.words[view.word], "200");
    type("1");
    EXPECT_EQ(view.words[view.word], "100");
    type("1");
    EXPECT_EQ(view.words[view.word], "1000") << "the next one that begins so";
    type("q7");
    EXPECT_EQ(view.words[view.word], "1000");
    press(Key::end);
    EXPECT_EQ(view.words[view.word], "100");
    press(Key::home);
    EXPECT_EQ(press(Key::enter).value, "1000");
    model.settings[0] = {"format", "F", "", "nmea, raw", "nmea"};
    press(Key::enter);
    type("R");
    EXPECT_EQ(press(Key::enter).value, "raw");
}

TEST_F(Keys, ANumberOutOfRangeIsNotSent)
{
    type("s");
    press(Key::down);
    press(Key::enter);
    type("50");
    EXPECT_EQ(press(Key::enter).kind, Wish::none);
    EXPECT_EQ(view.complaint, "'50' is not accepted; accepted: a whole number from 5 to 45");
    press(Key::escape);
    EXPECT_EQ(view.complaint, "");
    EXPECT_EQ(view.mode, View::Mode::setting);
}

TEST_F(Keys, AChoiceStaysWhereSeveralPanelsAreShown)
{
    roomy = true;
    type("s");
    EXPECT_EQ(view.panel, Panel::all);
}

}  // namespace
}  // namespace kelarcctl
