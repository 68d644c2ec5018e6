#pragma once

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

    bool IsLoaded() const { return problem.empty(); }
    bool Has(const std::string& entryPoint) const;
};

// Load the module and give it back. The first is what scans need, the second serves network
// configuration and USB.
ModuleSurvey SurveyScanModule(const VendorInfo& vendor);
ModuleSurvey SurveyConfigurationModule(const VendorInfo& vendor);

// Which vendors can do what the broker asks the module for network configuration for.
struct ServiceSurvey {
    bool anyVendorServes = false;
    std::vector<std::string> problems;  // one line for each vendor that does not, and for the list
};
ServiceSurvey SurveyConfiguration(const std::vector<std::string>& entryPoints);

// One line for each thing that keeps the vendor list, or a vendor's scan module, from serving
// scans.
std::vector<std::string> ScanProblems();

}  // namespace App
