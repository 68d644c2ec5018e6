// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "VendorSdk/records.h"
#include "misbehaviour.h"

namespace ScriptedVendor {

// The behaviour of a module.
struct Script {
    std::map<std::string, int> results;
    std::map<std::string, std::chrono::milliseconds> delays;
    std::map<std::string, Misbehaviour> misbehaviours;
    std::map<std::string, int> counts;  // the counts that the module returns
    std::vector<VendorSdk::DeviceInfo> devices;
    std::vector<VendorSdk::WifiConfigInfo> networks;
    int threads = 1;  // number of threads that report at once
    int repeat = 1;   // how often each thread reports them all; 0: until the scan is stopped
    std::chrono::milliseconds interval{0};  // between two reports of a thread
    std::string print;                      // text that each call writes to standard output
    bool untilStopped = false;              // a scan returns only after its stop
    bool forgetful = false;                 // arguments of calls are not recorded
    int afterStop = 0;                      // number of reports after the stop has returned

    // The scripted result of an entry point, or its success.
    int ResultOf(const std::string& entryPoint) const;
    std::chrono::milliseconds DelayOf(const std::string& entryPoint) const;
    Misbehaviour MisbehaviourOf(const std::string& entryPoint) const;
};

// Applies the lines of `text` for `moduleName` to `script`. Ignores invalid lines and returns one
// message for each, with `sourceName`, the line's number and the error.
std::vector<std::string> ApplyScript(std::istream& text, const std::string& sourceName,
                                     const std::string& moduleName, Script& script);

}  // namespace ScriptedVendor
