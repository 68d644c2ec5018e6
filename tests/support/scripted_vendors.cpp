// SPDX-License-Identifier: Apache-2.0

#include "tests/support/scripted_vendors.h"

#include <map>
#include <mutex>
#include <set>

#include "platform/PrinterUtil/PrinterUtil.h"
#include "tests/support/module_files.h"

namespace {

struct State {
    std::mutex mutex;
    std::vector<VendorInfo> vendors;
    int result = 0;
    bool keepsMapped = true;
    std::set<std::string> nulls;
    std::vector<std::string> requests;
    std::map<std::string, HINSTANCE> given;
};

// Never destroyed: the broker releases its modules while the process ends.
State& TheState() {
    static State& state = *new State;
    return state;
}

}  // namespace

namespace ScriptedVendors {

void Support(std::vector<VendorInfo> vendors, int result) {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    state.vendors = std::move(vendors);
    state.result = result;
}

VendorInfo Vendor(const std::string& productId, const std::string& moduleName) {
    return {productId, {}, {}, {}, moduleName, moduleName};
}

void KeepMapped(bool keep) {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    state.keepsMapped = keep;
}

void GiveNull(const std::string& moduleName) {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    state.nulls.insert(moduleName);
}

std::vector<std::string> Requests() {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    return state.requests;
}

HINSTANCE Given(const std::string& moduleName) {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    const auto found = state.given.find(moduleName);
    return found == state.given.end() ? nullptr : found->second;
}

std::string NameOf(HINSTANCE module) {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    for (const auto& [name, handle] : state.given) {
        if (handle == module) {
            return name;
        }
    }
    return {};
}

int ReleaseAll(const std::string& moduleName) {
    return ModuleFiles::ReleaseAll(moduleName);
}

HINSTANCE Load(const std::string& moduleName) {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    return ModuleFiles::Load(moduleName, state.keepsMapped);
}

}  // namespace ScriptedVendors

VendorDllMgr& VendorDllMgr::GetInstance() {
    static VendorDllMgr& manager = *new VendorDllMgr;
    return manager;
}

int VendorDllMgr::GetCurrentSupportList(std::vector<VendorInfo>& vendors) {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    state.requests.push_back("GetCurrentSupportList");
    vendors.insert(vendors.end(), state.vendors.begin(), state.vendors.end());
    return state.result;
}

bool VendorDllMgr::GetDeviceHandle(HINSTANCE& module, const std::string& moduleName) {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    state.requests.push_back("GetDeviceHandle " + moduleName);
    if (state.nulls.contains(moduleName)) {
        module = nullptr;
        return true;
    }
    // What may lack memory comes before the module is loaded: no reference is lost on the way.
    HINSTANCE& given = state.given[moduleName];
    const HINSTANCE loaded = ModuleFiles::Load(moduleName, state.keepsMapped);
    if (loaded == nullptr) {
        return false;
    }
    given = loaded;
    module = loaded;
    return true;
}

std::string PrinterUtil::WStringToString(const std::wstring& text) {
    std::string narrow;
    for (const wchar_t c : text) {
        narrow += static_cast<char>(c);
    }
    return narrow;
}
