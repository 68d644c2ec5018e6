// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "modules/scripted/scripted_vendor.h"

// A scripted vendor's module as a test sees it. It keeps one reference of its own to the module.
class ScriptedModule {
public:
    explicit ScriptedModule(const std::string& moduleName);

    void Script(const std::string& lines) const;
    void AddDevice(const VendorSdk::DeviceInfo& device) const { control->AddDevice(&device); }
    void AddNetwork(const VendorSdk::WifiConfigInfo& network) const {
        control->AddNetwork(&network);
    }
    void Block(const char* entryPoint) const { control->Block(entryPoint); }
    void Unblock(const char* entryPoint) const { control->Unblock(entryPoint); }
    int ReportNow(const VendorSdk::DeviceInfo* device) const { return control->ReportNow(device); }

    int ReportNetworkNow(const VendorSdk::WifiConfigInfo* network) const {
        return control->ReportNetworkNow(network);
    }

    std::vector<ScriptedVendor::Call> Calls() const;
    // The names of the entry points called, in order.
    std::vector<std::string> CallNames() const;
    std::vector<int> CallbackResults() const;
    VendorSdk::DeviceCallbackInfo* Registration() const { return control->Registration(); }
    VendorSdk::WifiCallbackInfo* WifiRegistration() const { return control->WifiRegistration(); }
    int RunningScans() const { return control->RunningScans(); }

    // As the module's; what takes longer than half a minute fails the test.
    void AwaitCalls(const char* entryPoint, std::size_t count) const;
    void AwaitCallbacks(std::size_t count) const;
    void AwaitRunningScans(int count) const;

private:
    const ScriptedVendor::Control* control = nullptr;
};
