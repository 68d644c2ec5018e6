// SPDX-License-Identifier: Apache-2.0

#include "tests/support/scripted_module.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/os_calls.h"
#include "tests/support/scripted_vendors.h"

namespace {

constexpr unsigned kPatience = 30000;

}  // namespace

ScriptedModule::ScriptedModule(const std::string& moduleName) {
    const HINSTANCE module = ScriptedVendors::Load(moduleName);
    const auto symbol =
        reinterpret_cast<void (*)()>(GetProcAddress(module, "ScriptedVendorControl"));
    if (symbol == nullptr) {
        throw std::runtime_error(moduleName + " is no scripted module");
    }
    control = reinterpret_cast<VendorSdk::ScriptedVendorControlFunction*>(symbol)();
}

void ScriptedModule::Script(const std::string& lines) const {
    EXPECT_EQ(control->Script(lines.c_str()), 0) << lines;
}

std::vector<ScriptedVendor::Call> ScriptedModule::Calls() const {
    std::vector<ScriptedVendor::Call> calls;
    for (ScriptedVendor::Call call{}; control->ReadCall(calls.size(), &call);) {
        calls.push_back(call);
    }
    return calls;
}

std::vector<std::string> ScriptedModule::CallNames() const {
    std::vector<std::string> names;
    for (const ScriptedVendor::Call& call : Calls()) {
        names.emplace_back(call.entryPoint);
    }
    return names;
}

std::vector<int> ScriptedModule::CallbackResults() const {
    std::vector<int> results;
    for (int result = 0; control->ReadCallbackResult(results.size(), &result);) {
        results.push_back(result);
    }
    return results;
}

void ScriptedModule::AwaitCalls(const char* entryPoint, std::size_t count) const {
    EXPECT_TRUE(control->WaitForCalls(entryPoint, count, kPatience))
        << control->moduleName << ' ' << entryPoint << ' ' << count;
}

void ScriptedModule::AwaitCallbacks(std::size_t count) const {
    EXPECT_TRUE(control->WaitForCallbacks(count, kPatience)) << control->moduleName << ' ' << count;
}

void ScriptedModule::AwaitRunningScans(int count) const {
    EXPECT_TRUE(control->WaitForRunningScans(count, kPatience))
        << control->moduleName << ' ' << count;
}
