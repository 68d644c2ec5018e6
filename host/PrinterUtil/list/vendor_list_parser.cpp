// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/list/vendor_list_parser.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "base/text/utf8.h"
#include "host/PrinterUtil/list/json_numbers.h"
#include "host/PrinterUtil/list/usb_identifiers.h"
#include "host/PrinterUtil/list/vendor_texts_parser.h"
#include "host/common/paths.h"

namespace PrinterUtil {

namespace {

using Json = nlohmann::json;

// An error in a part of the list, described relative to that part.
class ListError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The line and column of the byte where parsing failed.
std::string Place(const std::string& text, std::size_t byte) {
    const std::size_t end = std::min(byte == 0 ? 0 : byte - 1, text.size());
    const auto begin = text.begin();
    const auto stop = begin + static_cast<std::ptrdiff_t>(end);
    const std::size_t lineStart = end == 0 ? std::string::npos : text.rfind('\n', end - 1);
    const std::size_t column = lineStart == std::string::npos ? end + 1 : end - lineStart;
    return std::to_string(1 + std::count(begin, stop, '\n')) + ":" + std::to_string(column);
}

// The parser's message without the exception's name and position at its start. It quotes the list,
// which may contain any bytes.
std::string Reason(const Json::parse_error& error) {
    const std::string message = Base::ToUtf8(Base::FromUtf8(error.what()));
    const std::size_t end = message.find(": ");
    return end == std::string::npos ? message : message.substr(end + 2);
}

std::string Text(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end()) {
        return {};
    }
    if (!found->is_string()) {
        throw ListError(std::string("\"") + key + "\" is not a text but " + found->type_name());
    }
    const auto& text = found->get_ref<const std::string&>();
    if (text.find('\0') != std::string::npos) {
        throw ListError(std::string("\"") + key + "\" holds a NUL");
    }
    return text;
}

// The longest model identifier that fits into a device's record, in bytes.
constexpr std::size_t kLongestProductId = 31;

void CheckProductId(const std::string& productId) {
    if (productId.empty()) {
        throw ListError("\"productId\" is missing or empty");
    }
    if (productId.size() > kLongestProductId) {
        throw ListError("\"productId\" has " + std::to_string(productId.size()) +
                        " bytes; a device's record has room for " +
                        std::to_string(kLongestProductId));
    }
}

VendorInfo Vendor(const Json& entry) {
    if (!entry.is_object()) {
        throw ListError(std::string("not an object but ") + entry.type_name());
    }
    VendorInfo vendor;
    vendor.productId = Text(entry, "productId");
    vendor.usbIdList = Text(entry, "usbIdList");
    vendor.vendorName = Text(entry, "vendorName");
    vendor.scanModuleName = Text(entry, "scanModuleName");
    CheckProductId(vendor.productId);
    if (vendor.vendorName.empty() && vendor.scanModuleName.empty()) {
        throw ListError("names no module: \"vendorName\" and \"scanModuleName\" are missing");
    }
    return vendor;
}

const Json& VendorArray(const Json& list) {
    if (!list.is_object()) {
        throw ListError(std::string("not an object but ") + list.type_name());
    }
    const auto vendors = list.find("vendors");
    if (vendors == list.end()) {
        throw ListError("\"vendors\" is missing");
    }
    if (!vendors->is_array()) {
        throw ListError(std::string("\"vendors\" is not an array but ") + vendors->type_name());
    }
    return *vendors;
}

std::string ModuleFolder(const Json& list, const std::filesystem::path& listFolder) {
    const std::string folder =
        list.contains("moduleFolder") ? Text(list, "moduleFolder") : "modules";
    if (folder.empty()) {
        throw ListError("\"moduleFolder\" is empty");
    }
    return Host::PathToUtf8((listFolder / Host::PathFromUtf8(folder)).lexically_normal());
}

std::string Entry(std::size_t index) {
    return "vendors[" + std::to_string(index) + "]";
}

void AddTexts(const Json& entry, const std::string& productId, const std::string& place,
              VendorListReport& report) {
    VendorTexts texts = ParseVendorTexts(entry, place, report.notes);
    if (!texts.results.empty() || !texts.services.empty()) {
        texts.productId = productId;
        report.texts.push_back(std::move(texts));
    }
}

void ReadVendors(const Json& vendors, const std::string& place, VendorListReport& report) {
    std::map<std::string, std::size_t> entries;
    for (std::size_t index = 0; index < vendors.size(); ++index) {
        try {
            VendorInfo vendor = Vendor(vendors[index]);
            const auto [first, isNew] = entries.emplace(vendor.productId, index);
            if (!isNew) {
                throw ListError("\"productId\" is already that of " + Entry(first->second));
            }
            for (const std::string& note : MendUsbIdentifiers(vendor.usbIdList)) {
                report.notes.push_back(
                    std::string(place).append(": ").append(Entry(index)).append(": ").append(note));
            }
            AddTexts(vendors[index], vendor.productId, place + ": " + Entry(index), report);
            report.vendors.push_back(std::move(vendor));
        } catch (const ListError& error) {
            report.problems.push_back(place + ": " + Entry(index) + ": " + error.what());
        }
    }
}

}  // namespace

void ParseVendorList(const std::string& text, const std::filesystem::path& path,
                     VendorListReport& report) {
    const std::string place = "vendor list " + Host::PathToUtf8(path);
    try {
        const Json list = Json::parse(WithoutHugeNumbers(text));
        const Json& vendors = VendorArray(list);
        report.moduleFolder = ModuleFolder(list, path.parent_path());
        ReadVendors(vendors, place, report);
    } catch (const Json::parse_error& error) {
        report.problems.push_back(place + ":" + Place(text, error.byte) + ": " + Reason(error));
    } catch (const ListError& error) {
        report.problems.push_back(place + ": " + error.what());
    }
}

}  // namespace PrinterUtil
