// SPDX-License-Identifier: Apache-2.0

#include "app/documents/man_page.h"

#include <algorithm>
#include <cctype>
#include <sstream>

#include "app/commands/help_text.h"

namespace App {

namespace {

// Lines are not longer than editors and checkers of pages like.
constexpr std::size_t kColumns = 60;

// A line as it shall be read: what would be a request or a typographer's character is neither.
std::string Plain(const std::string& line) {
    std::string escaped;
    for (const char character : line) {
        switch (character) {
            case '\\':
                escaped += "\\e";
                break;
            case '-':
                escaped += "\\-";
                break;
            case '\'':
                escaped += "\\(aq";
                break;
            case '`':
                escaped += "\\(ga";
                break;
            case '^':
                escaped += "\\(ha";
                break;
            case '~':
                escaped += "\\(ti";
                break;
            default:
                escaped += character;
        }
    }
    return escaped.starts_with('.') ? "\\&" + escaped : escaped;
}

// Text that is filled, in lines.
std::string Filled(const std::string& text) {
    std::istringstream lines(Wrapped(text, kColumns));
    std::string page;
    for (std::string line; std::getline(lines, line);) {
        page += Plain(line) + "\n";
    }
    return page;
}

std::string Bold(const std::string& text) {
    return "\\fB" + Plain(text) + "\\fR";
}

std::string Italic(const std::string& text) {
    return "\\fI" + Plain(text) + "\\fR";
}

std::string Heading(const std::string& text) {
    return ".SH " + text + "\n";
}

std::string Item(const std::string& term, const std::string& text) {
    return ".TP\n" + term + "\n" + Filled(text);
}

// Lines that begin with a space stay as they are, each a line; the others are filled.
std::string Paragraph(const std::vector<std::string>& lines, bool areAsTheyAre) {
    if (!areAsTheyAre) {
        return Filled(Joined(lines, " "));
    }
    std::string page = ".nf\n";
    for (const std::string& line : lines) {
        page += Plain(line) + "\n";
    }
    return page + ".fi\n";
}

std::string Paragraphs(const std::string& text) {
    std::istringstream lines(text + "\n");
    std::string page;
    std::vector<std::string> paragraph;
    bool areAsTheyAre = false;
    for (std::string line; std::getline(lines, line);) {
        const bool isAsItIs = line.starts_with(' ');
        if (!paragraph.empty() && (line.empty() || isAsItIs != areAsTheyAre)) {
            page += Paragraph(paragraph, areAsTheyAre);
            paragraph.clear();
        }
        if (line.empty()) {
            page += ".PP\n";
        } else {
            paragraph.push_back(line);
            areAsTheyAre = isAsItIs;
        }
    }
    return page + (paragraph.empty() ? "" : Paragraph(paragraph, areAsTheyAre));
}

std::string OptionTerm(const Option& option) {
    if (option.IsArgument()) {
        return Italic(option.name);
    }
    if (option.IsFlag()) {
        return Bold(option.name);
    }
    const std::string value = Italic(option.valueName);
    return Bold(option.name) + (option.isValueOptional ? " [" + value + "]" : " " + value);
}

std::string Synopsis(const DocumentedCommand& documented) {
    std::string text = Bold(Joined(documented.words, " "));
    if (!documented.command.commands.empty()) {
        return text + " " + Italic("COMMAND");
    }
    for (const Option& option : documented.command.options) {
        if (!option.IsArgument() && option.isRequired) {
            text += " " + OptionTerm(option);
        }
    }
    text += " [" + Italic("OPTION") + "]...";
    for (const Option& option : documented.command.options) {
        if (option.IsArgument()) {
            text +=
                option.isRequired ? " " + Italic(option.name) : " [" + Italic(option.name) + "]";
        }
    }
    return text;
}

std::string PageName(const std::vector<std::string>& words) {
    return Joined(words, "-");
}

std::string SeeAlso(const DocumentedCommand& documented) {
    std::vector<std::string> pages;
    if (documented.words.size() > 1) {
        pages.push_back(PageName({documented.words.begin(), documented.words.end() - 1}));
    }
    for (const Command& inner : documented.command.commands) {
        pages.push_back(PageName(documented.words) + "-" + inner.name);
    }
    std::string text;
    for (const std::string& page : pages) {
        text += ".BR " + Plain(page) + " (1)" + (page == pages.back() ? "\n" : ",\n");
    }
    return text;
}

std::string Capitals(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return text;
}

std::string OptionsPart(const Command& command) {
    std::string text = Heading("OPTIONS");
    for (const bool areArguments : {true, false}) {
        for (const Option& option : command.options) {
            if (option.IsArgument() == areArguments) {
                text += Item(OptionTerm(option), OptionText(option) + ".");
            }
        }
    }
    return text;
}

std::string CommandsPart(const DocumentedCommand& documented) {
    std::string text = Heading("COMMANDS");
    for (const Command& inner : documented.command.commands) {
        text += Item(Bold(inner.name), inner.summary);
    }
    return text;
}

std::string ExamplesPart(const Command& command) {
    std::string text = Heading("EXAMPLES");
    for (const Example& example : command.examples) {
        text += ".TP\n" + Bold("devicediscover " + example.line) + "\n";
        text += example.text.empty() ? "\\&\n" : Filled(example.text);
    }
    return text;
}

std::string StatusPart(const Command& command) {
    std::string text = Heading("EXIT STATUS");
    for (const ExitText& exit : command.exitTexts) {
        text += Item(Bold(std::to_string(exit.status)), exit.text);
    }
    return text;
}

}  // namespace

std::string ManPage(const DocumentedCommand& documented, const std::string& version,
                    const std::string& date) {
    const Command& command = documented.command;
    const std::string name = PageName(documented.words);
    std::string page = ".\\\" SPDX-License-Identifier: Apache-2.0\n.TH " + Plain(Capitals(name)) +
                       " 1 " + date + " \"DeviceDiscover " + version + "\" \"User Commands\"\n" +
                       ".nh\n.ad l\n";
    page += Heading("NAME") + Plain(name) + " \\- " + Plain(Title(command)) + "\n";
    page += Heading("SYNOPSIS") + Synopsis(documented) + "\n";
    page += Heading("DESCRIPTION") + Filled(command.summary);
    if (!command.details.empty()) {
        page += ".PP\n" + Paragraphs(command.details);
    }
    page += command.commands.empty() ? "" : CommandsPart(documented);
    return page + OptionsPart(command) + ExamplesPart(command) + StatusPart(command) +
           Heading("SEE ALSO") + SeeAlso(documented);
}

}  // namespace App
