// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <gmock/gmock.h>

#include "host/PrinterUtil/vendor_list.h"
#include "tests/host/host_support.h"

namespace HostTest {

// A user with a list of his own, and what the manager logs about it.
class PrinterUtilTest : public testing::Test {
protected:
    fs::path ListFile() const { return user.ConfigurationFolder() / "vendors.json"; }
    fs::path ModuleFolder() const { return user.ConfigurationFolder() / "modules"; }
    void WriteList(const std::string& text) { Write(ListFile(), text); }

    // A list with nothing in it but a module folder of its own.
    void WriteEmptyList() {
        WriteList(R"({"vendors": []})");
        fs::create_directories(ModuleFolder());
    }

    std::vector<std::string> ProductIds() {
        std::vector<VendorInfo> vendors;
        result = VendorDllMgr::GetInstance().GetCurrentSupportList(vendors);
        std::vector<std::string> ids;
        for (const VendorInfo& vendor : vendors) {
            ids.push_back(vendor.productId);
        }
        return ids;
    }

    HINSTANCE Handle(const std::string& name) {
        HINSTANCE module = nullptr;
        const bool found = VendorDllMgr::GetInstance().GetDeviceHandle(module, name);
        EXPECT_EQ(found, module != nullptr);
        return module;
    }

    // The error lines of the log.
    std::vector<std::string> Errors() const {
        std::vector<std::string> errors;
        for (const std::string& line : Lines(user.LogFile())) {
            const std::size_t level = line.find("] error");
            if (level != std::string::npos) {
                errors.push_back(line.substr(level));
            }
        }
        return errors;
    }

    User user;
    int result = 0;
};

inline std::string ListOf(const std::string& productId) {
    return R"({"vendors": [{"productId": ")" + productId +
           R"(", "vendorName": "v", "scanModuleName": "s"}]})";
}

}  // namespace HostTest
