// SPDX-License-Identifier: Apache-2.0

#include "bench/host/given_vendors.h"

#include <dlfcn.h>

#include <utility>

#include "base/text/utf8.h"
#include "platform/PrinterUtil/PrinterUtil.h"

namespace {

std::vector<VendorInfo>& Given() {
    static auto* const given = new std::vector<VendorInfo>;
    return *given;
}

}  // namespace

VendorDllMgr& VendorDllMgr::GetInstance() {
    static VendorDllMgr* const instance = new VendorDllMgr;
    return *instance;
}

int VendorDllMgr::GetCurrentSupportList(std::vector<VendorInfo>& vendors) {
    vendors.insert(vendors.end(), Given().begin(), Given().end());
    return 0;
}

bool VendorDllMgr::GetDeviceHandle(HINSTANCE& module, const std::string& moduleName) {
    void* const loaded = dlopen(moduleName.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (loaded == nullptr) {
        return false;
    }
    module = static_cast<HINSTANCE>(loaded);
    return true;
}

void Bench::SupportVendors(std::vector<VendorInfo> vendors) {
    Given() = std::move(vendors);
}

std::string PrinterUtil::WStringToString(const std::wstring& text) {
    return Base::ToUtf8(text);
}
