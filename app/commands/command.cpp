// SPDX-License-Identifier: Apache-2.0

#include "app/commands/command.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace App {

namespace {

constexpr double kShortest = 0.1;
constexpr double kLongest = 86400;

template <class Number>
std::optional<Number> Parsed(const std::string& text) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && next == end ? std::optional<Number>(number) : std::nullopt;
}

// "5", "0.5"
std::string TextOf(Seconds time) {
    char text[32];
    const auto [end, error] = std::to_chars(std::begin(text), std::end(text), time.count());
    return error == std::errc() ? std::string(text, end) : std::string();
}

}  // namespace

Option& Command::AddFlag(const std::string& optionName, bool& value, const std::string& text) {
    options.push_back({optionName, "", text, [&value](const std::string&) -> std::string {
                           value = true;
                           return {};
                       }});
    return options.back();
}

Option& Command::AddText(const std::string& optionName, const std::string& valueName,
                         std::string& value, const std::string& text,
                         const std::function<std::string(const std::string&)>& check) {
    options.push_back(
        {optionName, valueName, text, [&value, check](const std::string& given) -> std::string {
             value = given;
             return check ? check(given) : std::string();
         }});
    return options.back();
}

Option& Command::AddFile(const std::string& optionName, std::string& value,
                         const std::string& text) {
    return AddText(optionName, "FILE", value, text, [](const std::string& file) {
        return file.empty() ? "the file name is empty; leave the option out for the default" : "";
    });
}

Option& Command::AddSeconds(const std::string& optionName, Seconds& value,
                            const std::string& text) {
    Option& option = AddSeconds(
        optionName, [&value](Seconds time) { value = time; }, text);
    option.standard = TextOf(value);
    return option;
}

Option& Command::AddSeconds(const std::string& optionName, std::function<void(Seconds)> set,
                            const std::string& text) {
    options.push_back({optionName, "N", text + ", 0.1 to 86400 s",
                       [set = std::move(set)](const std::string& given) -> std::string {
                           const std::optional<double> seconds = Parsed<double>(given);
                           // Written so that it also refuses NaN.
                           if (!seconds || !(*seconds >= kShortest && *seconds <= kLongest)) {
                               return "'" + given + "' is not a number from 0.1 to 86400";
                           }
                           set(Seconds(*seconds));
                           return {};
                       }});
    return options.back();
}

Option& Command::AddWholeNumber(const std::string& optionName, int& value,
                                const std::string& text) {
    options.push_back({optionName, "N", text, [&value](const std::string& given) -> std::string {
                           const std::optional<int> number = Parsed<int>(given);
                           value = number.value_or(value);
                           return number ? "" : "'" + given + "' is not a whole number";
                       }});
    options.back().standard = std::to_string(value);
    return options.back();
}

bool Command::Has(const std::string& option) const {
    return std::any_of(options.begin(), options.end(),
                       [&](const Option& one) { return one.name == option; });
}

}  // namespace App
