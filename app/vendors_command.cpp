#include "app/vendors_command.h"

#include <fmt/format.h>

#include <algorithm>

#include "app/console.h"
#include "app/json_output.h"
#include "app/messages.h"
#include "app/problem.h"
#include "app/text.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

std::string ModuleText(const ModuleSurvey& module) {
    std::string text = fmt::format("  {}: {}\n", module.use, DisplayText(module.name));
    text +=
        fmt::format("    {}\n", module.IsLoaded() ? DisplayText(module.path)
                                                  : "not loaded: " + DisplayText(module.problem));
    for (const EntryPointSurvey& entryPoint : module.entryPoints) {
        text +=
            fmt::format("    {:27}{}\n", entryPoint.name, entryPoint.bound ? "bound" : "missing");
    }
    return text;
}

std::string VendorText(const VendorInfo& vendor, const std::vector<ModuleSurvey>& modules) {
    std::string text = fmt::format("\n{}\n", DisplayText(vendor.productId));
    for (const ModuleSurvey& module : modules) {
        text += ModuleText(module);
    }
    return text;
}

[[noreturn]] void ThrowNoVendor(const PrinterUtil::VendorListReport& list) {
    throw Problem("no vendor is supported" + Lines(list.problems) + Lines(list.notes) +
                  "\nName a vendor list with --vendors FILE, or in the environment variable "
                  "DEVICEDISCOVER_VENDORS.");
}

}  // namespace

ExitStatus Vendors(const Settings& settings) {
    const PrinterUtil::VendorListReport list = PrinterUtil::DescribeVendorList();
    if (list.vendors.empty()) {
        ThrowNoVendor(list);
    }
    for (const std::string& problem : list.problems) {
        Warn(problem);
    }
    for (const std::string& note : list.notes) {
        Warn(note);
    }
    if (!settings.json) {
        WriteOutput("Vendor list  " + DisplayText(list.path) + "\nModules      " +
                    DisplayText(list.moduleFolder) + "\n");
    }
    bool anyLoaded = false;
    for (const VendorInfo& vendor : list.vendors) {
        const std::vector<ModuleSurvey> modules{SurveyScanModule(vendor),
                                                SurveyConfigurationModule(vendor)};
        WriteOutput(settings.json ? VendorJson(list, vendor, modules) + "\n"
                                  : VendorText(vendor, modules));
        anyLoaded =
            anyLoaded || std::any_of(modules.begin(), modules.end(),
                                     [](const ModuleSurvey& module) { return module.IsLoaded(); });
    }
    if (!anyLoaded) {
        throw Problem("no vendor's module can be loaded\nPut the modules into " +
                      list.moduleFolder + ", or name another vendor list with --vendors FILE.");
    }
    return kFound;
}

}  // namespace App
