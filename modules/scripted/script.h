#pragma once

#include <chrono>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "VendorSdk/records.h"
#include "misbehaviour.h"

namespace ScriptedVendor {

// How a module behaves.
struct Script {
    std::map<std::string, int> results;
    std::map<std::string, std::chrono::milliseconds> delays;
    std::map<std::string, Misbehaviour> misbehaviours;
    std::map<std::string, int> counts;  // that are said to be written
    std::vector<VendorSdk::DeviceInfo> devices;
    std::vector<VendorSdk::WifiConfigInfo> networks;
    int threads = 1;  // that report at once
    int repeat = 1;   // how often each thread reports them all; 0: until the scan is stopped
    std::chrono::milliseconds interval{0};  // between two reports of a thread
    std::string print;                      // what each call writes to standard output
    bool untilStopped = false;              // a scan waits for its stop
    bool forgetful = false;                 // calls leave no trace of their arguments
    int afterStop = 0;                      // reports once the stop has returned

    // The scripted result of an entry point, or its success.
    int ResultOf(const std::string& entryPoint) const;
    std::chrono::milliseconds DelayOf(const std::string& entryPoint) const;
    Misbehaviour MisbehaviourOf(const std::string& entryPoint) const;
};

// Applies the lines of `text` that concern `moduleName` to `script`. A line that makes no sense is
// left out; returned is one message for each, with `sourceName`, the line's number and what is
// wrong.
std::vector<std::string> ApplyScript(std::istream& text, const std::string& sourceName,
                                     const std::string& moduleName, Script& script);

}  // namespace ScriptedVendor
