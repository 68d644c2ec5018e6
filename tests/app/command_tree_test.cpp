// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <sstream>
#include <string>

#include "app/commands/commands.h"
#include "app/commands/help_text.h"

namespace App {

namespace {

class CommandTree : public testing::Test {
protected:
    // Calls `check` for the program and each of its commands, with its words.
    void ForEach(const std::function<void(const Command&, const std::string&)>& check) {
        Visit(program, program.name, check);
    }

    static void Visit(const Command& command, const std::string& words,
                      const std::function<void(const Command&, const std::string&)>& check) {
        SCOPED_TRACE(words);
        check(command, words);
        for (const Command& inner : command.commands) {
            Visit(inner, words + " " + inner.name, check);
        }
    }

    static Option& OptionOf(Command& command, const std::string& name) {
        return *std::find_if(command.options.begin(), command.options.end(),
                             [&](const Option& option) { return option.name == name; });
    }

    Settings settings;
    Command program = ProgramCommand(settings);
};

TEST_F(CommandTree, EachCommandEitherRunsOrHasCommands) {
    int commands = 0;
    ForEach([&](const Command& command, const std::string&) {
        ++commands;
        EXPECT_NE(command.run != nullptr, !command.commands.empty());
        EXPECT_FALSE(command.examples.empty());
        EXPECT_EQ(command.exitTexts.size(), 4U);
        EXPECT_TRUE(command.summary.ends_with('.'));
    });
    EXPECT_EQ(commands, 22);
}

TEST_F(CommandTree, EachCommandThatRunsHasTheCommonOptions) {
    ForEach([](const Command& command, const std::string&) {
        for (const char* name :
             {"--json", "--vendors", "--vendor-seconds", "--log-level", "--log-file"}) {
            EXPECT_EQ(command.Has(name), command.run != nullptr) << name;
        }
    });
}

TEST_F(CommandTree, OptionsHaveNamesOfTheirOwnAndTexts) {
    ForEach([](const Command& command, const std::string&) {
        std::set<std::string> names;
        for (const Option& option : command.options) {
            EXPECT_TRUE(names.insert(option.name).second) << option.name;
            EXPECT_FALSE(option.text.empty()) << option.name;
            EXPECT_NE(option.take, nullptr) << option.name;
        }
        for (const Option& option : command.options) {
            for (const std::string& other : option.excludes) {
                EXPECT_TRUE(names.contains(other)) << option.name << ": " << other;
            }
            for (const std::string& other : option.needs) {
                EXPECT_TRUE(names.contains(other)) << option.name << ": " << other;
            }
        }
    });
}

TEST_F(CommandTree, ExamplesBeginWithTheirCommand) {
    ForEach([](const Command& command, const std::string& words) {
        for (const Example& example : command.examples) {
            EXPECT_TRUE(("devicediscover " + example.line).starts_with(words)) << example.line;
        }
    });
}

TEST_F(CommandTree, NoLineOfHelpIsLongerThanATerminalIsWide) {
    ForEach([](const Command& command, const std::string& words) {
        std::istringstream lines(HelpEnd(command, words));
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), 80U) << line;
        }
    });
}

TEST_F(CommandTree, CopiesStoreWhereTheFirstDoes) {
    Command copy = program;
    EXPECT_EQ(OptionOf(copy.commands.front(), "--vendors").take("list.json"), "");
    EXPECT_EQ(settings.vendorList, "list.json");
}

TEST_F(CommandTree, AnEmptyFileNameIsRefused) {
    EXPECT_NE(OptionOf(program.commands.front(), "--vendors").take(""), "");
}

TEST(HelpText, WrapsBetweenWords) {
    EXPECT_EQ(Wrapped("one two three", 7), "one two\nthree");
    EXPECT_EQ(Wrapped("one\n two", 80), "one two");
    EXPECT_EQ(Wrapped("unbreakable word", 3), "unbreakable\nword");
    EXPECT_EQ(Wrapped("", 3), "");
}

TEST(HelpText, FillsParagraphsAndLeavesIndentedLines) {
    EXPECT_EQ(Filled("one\ntwo three\n  four  five six\nseven\n\neight", 9),
              "one two\nthree\n  four  five six\nseven\n\neight\n");
}

TEST(HelpText, NamesChoicesAndWhatHoldsWithoutTheOption) {
    Option option{"--level", "LEVEL", "How much", {}};
    EXPECT_EQ(OptionText(option), "How much");
    option.choices = {"none", "some", "all"};
    EXPECT_EQ(OptionText(option), "How much: none, some or all");
    option.standard = "some";
    EXPECT_EQ(OptionText(option), "How much: none, some or all (default some)");
}

}  // namespace

}  // namespace App
