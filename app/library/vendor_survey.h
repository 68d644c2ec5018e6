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
    std::string use;  // what the broker asks it for
    std::string name;
    std::string path;
    std::string problem;  // why it was not loaded; empty when it was
    std::vector<EntryPointSurvey> entryPoints;
    std::vector<std::string> hints;  // exports that look like an entry point that is missing

    bool IsLoaded() const { return problem.empty(); }
    bool Has(const std::string& entryPoint) const;
    bool HasAny() const;
};

// Load the module and give it back. The first is what scans need, the second serves network
// configuration and USB.
ModuleSurvey SurveyScanModule(const VendorInfo& vendor);
ModuleSurvey SurveyConfigurationModule(const VendorInfo& vendor);

// Looks in the module's file for exports that look like the entry points that are missing.
void AddHints(ModuleSurvey& survey);

// Which vendors can do what the broker asks the module for network configuration for.
struct ServiceSurvey {
    bool anyVendorServes = false;
    std::vector<std::string> problems;  // one line for each vendor that does not, and for the list
};
ServiceSurvey SurveyConfiguration(const std::vector<std::string>& entryPoints);

struct ScanSurvey {
    std::set<std::string> listed;      // the product ids of the list
    std::vector<std::string> vendors;  // the product ids of those that can scan
    // One line for each thing that keeps the vendor list, or a vendor's scan module, from serving.
    std::vector<std::string> problems;
};
ScanSurvey SurveyScans();

}  // namespace App
