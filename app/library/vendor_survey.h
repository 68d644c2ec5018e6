// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <set>
#include <string>
#include <vector>

#include "platform/PrinterUtil/VendorDllMgr.h"

namespace App {

struct EntryPointSurvey {
    std::string name;
    bool bound;
};

// One of a vendor's modules, as the broker would find it.
struct ModuleSurvey {
    std::string use;  // what the broker uses it for
    std::string name;
    std::string path;
    std::string problem;  // why it was not loaded; empty when it was
    std::vector<EntryPointSurvey> entryPoints;
    std::vector<std::string> hints;  // exports similar to a missing entry point

    bool IsLoaded() const { return problem.empty(); }
    bool Has(const std::string& entryPoint) const;
    bool HasAny() const;
};

// Load the module, check its entry points and release it. The first checks the module for scans,
// the second the module for network configuration and USB.
ModuleSurvey SurveyScanModule(const VendorInfo& vendor);
ModuleSurvey SurveyConfigurationModule(const VendorInfo& vendor);

// Adds exports of the module's file that are similar to missing entry points.
void AddHints(ModuleSurvey& survey);

// Which vendors' configuration modules export all of `entryPoints`.
struct ServiceSurvey {
    bool anyVendorServes = false;
    // One line for each vendor that does not, and for each problem of the list.
    std::vector<std::string> problems;
};
ServiceSurvey SurveyConfiguration(const std::vector<std::string>& entryPoints);

struct ScanSurvey {
    std::set<std::string> listed;      // the product ids of the list
    std::vector<std::string> vendors;  // the product ids of the vendors that can scan
    // One line for each problem of the vendor list or of a vendor's scan module.
    std::vector<std::string> problems;
};
ScanSurvey SurveyScans();

}  // namespace App
