// SPDX-License-Identifier: Apache-2.0

#include "app/library/vendor_texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <vector>

#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

using PrinterUtil::VendorResult;
using PrinterUtil::VendorTexts;

// Never destroyed: a thread may ask while the process ends.
const std::vector<VendorTexts>& AllTexts() {
    static const auto& texts =
        *new std::vector<VendorTexts>(PrinterUtil::DescribeVendorList().texts);
    return texts;
}

const VendorTexts* TextsOf(const std::string& vendor) {
    const auto found =
        std::find_if(AllTexts().begin(), AllTexts().end(),
                     [&](const VendorTexts& texts) { return texts.productId == vendor; });
    return found == AllTexts().end() ? nullptr : &*found;
}

const VendorResult* Find(const VendorTexts& texts, int result, const std::string& entryPoint) {
    const auto found =
        std::find_if(texts.results.begin(), texts.results.end(), [&](const VendorResult& known) {
            return known.result == result && known.entryPoint == entryPoint;
        });
    return found == texts.results.end() ? nullptr : &*found;
}

const VendorResult* Known(const VendorTexts& texts, int result, const std::string& entryPoint) {
    const VendorResult* const own = Find(texts, result, entryPoint);
    return own == nullptr && !entryPoint.empty() ? Find(texts, result, {}) : own;
}

// What the vendor says, or what each vendor says.
std::vector<std::pair<std::string, const VendorResult*>> AllKnown(int result,
                                                                  const std::string& vendor,
                                                                  const std::string& entryPoint) {
    std::vector<std::pair<std::string, const VendorResult*>> known;
    for (const VendorTexts& texts : AllTexts()) {
        const VendorResult* const one = Known(texts, result, entryPoint);
        if (one != nullptr && (vendor.empty() || texts.productId == vendor)) {
            known.emplace_back(texts.productId, one);
        }
    }
    return known;
}

bool Is(VendorResult::Outcome outcome, int result, const std::string& vendor,
        const std::string& entryPoint) {
    const auto known = AllKnown(result, vendor, entryPoint);
    return std::any_of(known.begin(), known.end(),
                       [&](const auto& one) { return one.second->outcome == outcome; });
}

}  // namespace

std::string VendorsResult(int result, const std::string& vendor, const std::string& entryPoint) {
    std::string meanings;
    for (const auto& [productId, known] : AllKnown(result, vendor, entryPoint)) {
        meanings += fmt::format("{}of vendor {}: {}", meanings.empty() ? "" : "; ", productId,
                                known->meaning);
    }
    return fmt::format("the vendor's result {}{}", result,
                       meanings.empty() ? "" : " (" + meanings + ")");
}

bool IsAnswer(int result, const std::string& vendor, const std::string& entryPoint) {
    return !Is(VendorResult::Outcome::kUnknown, result, vendor, entryPoint);
}

bool IsUnconfirmed(int result, const std::string& vendor, const std::string& entryPoint) {
    return Is(VendorResult::Outcome::kUnconfirmed, result, vendor, entryPoint);
}

std::string MeaningOf(int result, const std::string& vendor, const std::string& entryPoint) {
    const VendorTexts* const texts = TextsOf(vendor);
    const VendorResult* const known = texts == nullptr ? nullptr : Find(*texts, result, entryPoint);
    return known == nullptr ? "" : known->meaning;
}

std::string MeaningsOf(const std::string& vendor, const std::string& entryPoint) {
    std::map<int, std::string> meanings;
    if (const VendorTexts* const texts = TextsOf(vendor)) {
        for (const VendorResult& known : texts->results) {
            if (known.entryPoint == entryPoint && known.result != 0) {
                meanings.emplace(known.result, known.meaning);
            }
        }
    }
    std::string text;
    for (const auto& [result, meaning] : meanings) {
        text += fmt::format("\n  {}: {}", result, meaning);
    }
    return text;
}

std::optional<std::string> ServiceName(int service, const std::string& vendor) {
    const VendorTexts* const texts = TextsOf(vendor);
    if (texts == nullptr) {
        return std::nullopt;
    }
    const auto found = texts->services.find(service);
    return found == texts->services.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace App
