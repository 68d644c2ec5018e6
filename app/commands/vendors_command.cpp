// SPDX-License-Identifier: Apache-2.0

#include "app/commands/vendors_command.h"

#include <fmt/format.h>

#include <algorithm>

#include "app/commands/common_options.h"
#include "app/outcome/problem.h"
#include "app/output/json_output.h"
#include "app/program/messages.h"
#include "app/program/settings.h"
#include "app/running/awaiting.h"
#include "app/terminal/console.h"
#include "base/text/display_text.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

namespace {

std::string ModuleText(const ModuleSurvey& module) {
    std::string text = fmt::format("  {}: {}\n", module.use, Base::DisplayText(module.name));
    text += fmt::format("    {}\n", module.IsLoaded()
                                        ? Base::DisplayText(module.path)
                                        : "not loaded: " + Base::DisplayText(module.problem));
    for (const EntryPointSurvey& entryPoint : module.entryPoints) {
        text +=
            fmt::format("    {:27}{}\n", entryPoint.name, entryPoint.bound ? "bound" : "missing");
    }
    for (const std::string& hint : module.hints) {
        text += fmt::format("    hint: {}\n", Base::DisplayText(hint));
    }
    return text;
}

std::string VendorText(const VendorInfo& vendor, const std::vector<ModuleSurvey>& modules) {
    std::string text = fmt::format("\n{}\n", Base::DisplayText(vendor.productId));
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

// One line for each module that exports none of its entry points, with a possible reason. A module
// listed for both uses may serve only one.
void AddUseless(const VendorInfo& vendor, const std::vector<ModuleSurvey>& modules,
                std::vector<std::string>& lines) {
    for (const ModuleSurvey& module : modules) {
        const bool serves = std::any_of(modules.begin(), modules.end(), [&](const auto& other) {
            return other.name == module.name && other.HasAny();
        });
        if (!module.IsLoaded() || serves) {
            continue;
        }
        lines.push_back("vendor " + vendor.productId + ": module " + module.path +
                        " exports none of the entry points for " + module.use);
        lines.insert(lines.end(), module.hints.begin(), module.hints.end());
    }
}

ExitStatus Vendors() {
    const PrinterUtil::VendorListReport list = PrinterUtil::DescribeVendorList();
    if (list.vendors.empty()) {
        ThrowNoVendor(list);
    }
    WarnOfAll(list.problems);
    WarnOfAll(list.notes);
    if (!WritesJson()) {
        WriteOutput("Vendor list  " + Base::DisplayText(list.path) + "\nModules      " +
                    Base::DisplayText(list.moduleFolder) + "\n");
    }
    bool anyLoaded = false;
    std::vector<std::string> useless;
    for (const VendorInfo& vendor : list.vendors) {
        auto modules = Await<std::vector<ModuleSurvey>>(
            "Loading the modules of vendor " + vendor.productId, [vendor] {
                return std::vector{SurveyScanModule(vendor), SurveyConfigurationModule(vendor)};
            });
        std::for_each(modules.begin(), modules.end(), AddHints);
        WriteOutput(WritesJson() ? VendorJson(list, vendor, modules) + "\n"
                                 : VendorText(vendor, modules));
        AddUseless(vendor, modules, useless);
        anyLoaded =
            anyLoaded || std::any_of(modules.begin(), modules.end(),
                                     [](const ModuleSurvey& module) { return module.IsLoaded(); });
    }
    if (!anyLoaded) {
        throw Problem("no vendor's module can be loaded\nPut the modules into " +
                      list.moduleFolder + ", or name another vendor list with --vendors FILE.");
    }
    if (!useless.empty()) {
        Complain(
            "a loaded module cannot be used" + Lines(useless) +
            "\nEntry points are exported by their exact names, with C linkage. Does the list name "
            "the right module in each place?");
        return kNoneFound;
    }
    return kFound;
}

constexpr const char* kVendorsDetails =
    R"(The vendor list is the file of --vendors, else the file that the environment
variable DEVICEDISCOVER_VENDORS names, else vendors.json in your configuration
folder, else the list beside the library.

Lines that begin with "hint:" show exports that resemble a missing entry point.)";

}  // namespace

Command VendorsCommand() {
    return {.name = "vendors",
            .summary = "Show each supported vendor, its modules and their entry points.",
            .examples = {{"vendors"},
                         {"vendors --vendors ./vendors.json"},
                         {"vendors --json | jq '.modules[].problem'"}},
            .details = kVendorsDetails,
            .exitTexts = ExitTexts("at least one module could be loaded",
                                   "a loaded module exports no entry point",
                                   "could not run; no module could be loaded"),
            .run = Vendors};
}

}  // namespace App
