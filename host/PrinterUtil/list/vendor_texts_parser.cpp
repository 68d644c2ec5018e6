// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/list/vendor_texts_parser.h"

#include <charconv>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

#include "base/text/characters.h"
#include "base/text/display_text.h"
#include "base/text/utf8.h"

namespace PrinterUtil {

namespace {

using Json = nlohmann::json;
using Outcome = VendorResult::Outcome;

constexpr std::size_t kMaxTexts = 500;
constexpr std::size_t kLongestText = 1000;

std::optional<int> NumberOf(const std::string& key) {
    int number = 0;
    const char* const end = key.data() + key.size();
    const auto [rest, error] = std::from_chars(key.data(), end, number);
    return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

bool HasControls(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        if (Base::IsControl(Base::NextCodePoint(text, at))) {
            return true;
        }
    }
    return false;
}

// The text is shown on terminals.
bool IsUsableText(const Json& value) {
    if (!value.is_string()) {
        return false;
    }
    const auto& text = value.get_ref<const std::string&>();
    return !text.empty() && text.size() <= kLongestText && !HasControls(text);
}

std::optional<Outcome> OutcomeOf(const Json& meaning) {
    const auto found = meaning.find("outcome");
    if (found == meaning.end()) {
        return Outcome::kKnown;
    }
    return *found == "unknown"       ? std::optional(Outcome::kUnknown)
           : *found == "unconfirmed" ? std::optional(Outcome::kUnconfirmed)
                                     : std::nullopt;
}

class TextsReader {
public:
    TextsReader(const std::string& where, std::vector<std::string>& allNotes)
        : place(where), notes(allNotes) {}

    void ReadResults(const Json& results) {
        for (const auto& [key, value] : results.items()) {
            if (NumberOf(key)) {
                ReadResult(key, value, {});
            } else if (value.is_object()) {
                for (const auto& [number, meaning] : value.items()) {
                    ReadResult(number, meaning, key);
                }
            } else {
                Note("results", key, "is neither a number nor an entry point with its results");
            }
        }
    }

    void ReadServices(const Json& services) {
        for (const auto& [key, value] : services.items()) {
            const std::optional<int> number = NumberOf(key);
            if (!number || !IsUsableText(value)) {
                Note("services", key, "is no number with a text");
            } else if (texts.services.size() < kMaxTexts) {
                texts.services.emplace(*number, value.get<std::string>());
            }
        }
    }

    VendorTexts texts;

private:
    // A meaning is a text, or an object with the text and its outcome.
    void ReadResult(const std::string& key, const Json& value, const std::string& entryPoint) {
        static const Json kNone;
        const Json& meaning = !value.is_object()          ? value
                              : value.contains("meaning") ? value.at("meaning")
                                                          : kNone;
        const std::optional<int> number = NumberOf(key);
        const std::optional<Outcome> outcome =
            value.is_object() ? OutcomeOf(value) : std::optional(Outcome::kKnown);
        if (!number || !IsUsableText(meaning) || !outcome) {
            Note("results", entryPoint.empty() ? key : entryPoint + " " + key,
                 "is no number with a text");
        } else if (texts.results.size() < kMaxTexts) {
            texts.results.push_back({*number, entryPoint, meaning.get<std::string>(), *outcome});
        }
    }

    void Note(const std::string& list, const std::string& key, const std::string& problem) {
        notes.push_back(place + ": \"" + list + "\": \"" + Shown(key) + "\" " + problem +
                        ", and is left out");
    }

    static std::string Shown(const std::string& key) {
        constexpr std::size_t kLongestKey = 60;
        return Base::DisplayText(Base::CutUtf8(key, kLongestKey));
    }

    const std::string& place;
    std::vector<std::string>& notes;
};

}  // namespace

VendorTexts ParseVendorTexts(const Json& entry, const std::string& place,
                             std::vector<std::string>& notes) {
    TextsReader reader(place, notes);
    const auto read = [&](const char* list, void (TextsReader::*operation)(const Json&)) {
        const auto found = entry.find(list);
        if (found != entry.end() && found->is_object()) {
            (reader.*operation)(*found);
        } else if (found != entry.end()) {
            notes.push_back(place + ": \"" + list + "\" is no object, and is left out");
        }
    };
    read("results", &TextsReader::ReadResults);
    read("services", &TextsReader::ReadServices);
    return std::move(reader.texts);
}

}  // namespace PrinterUtil
