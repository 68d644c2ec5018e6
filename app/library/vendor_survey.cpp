// SPDX-License-Identifier: Apache-2.0

#include "app/library/vendor_survey.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/library/module_exports.h"
#include "host/PrinterUtil/vendor_list.h"
#include "platform/os_calls.h"

namespace App {

namespace {

#define APP_EXPORT_NAME(name) #name,

const std::vector<std::string> kScanExports{VENDORSDK_SCAN_ENTRY_POINTS(APP_EXPORT_NAME)};
const std::vector<std::string> kConfigurationExports{
    VENDORSDK_NETCONN_ENTRY_POINTS(APP_EXPORT_NAME) VENDORSDK_USB_ENTRY_POINTS(APP_EXPORT_NAME)};

#undef APP_EXPORT_NAME

ModuleSurvey Survey(const std::string& use, const std::string& moduleName,
                    const std::vector<std::string>& exports) {
    if (moduleName.empty()) {
        return {use, moduleName, {}, "the vendor list names none", {}, {}};
    }
    const PrinterUtil::ModuleReport report = PrinterUtil::DescribeModule(moduleName);
    ModuleSurvey survey{use, moduleName, report.path, report.problem, {}, {}};
    if (report.module == nullptr) {
        if (survey.problem.empty()) {
            survey.problem = "cannot be loaded";
        }
        return survey;
    }
    for (const std::string& name : exports) {
        survey.entryPoints.push_back(
            {name, GetProcAddress(report.module, name.c_str()) != nullptr});
    }
    FreeLibrary(report.module);
    return survey;
}

}  // namespace

bool ModuleSurvey::Has(const std::string& entryPoint) const {
    return std::any_of(entryPoints.begin(), entryPoints.end(), [&](const EntryPointSurvey& known) {
        return known.bound && known.name == entryPoint;
    });
}

bool ModuleSurvey::HasAny() const {
    return std::any_of(entryPoints.begin(), entryPoints.end(),
                       [](const EntryPointSurvey& known) { return known.bound; });
}

void AddHints(ModuleSurvey& survey) {
    std::ifstream file(std::filesystem::path(std::u8string(survey.path.begin(), survey.path.end())),
                       std::ios::binary);
    const std::vector<std::string> names = ExportedNames(file);
    for (const EntryPointSurvey& entryPoint : survey.entryPoints) {
        const std::string hint = entryPoint.bound ? "" : NearMiss(entryPoint.name, names);
        if (!hint.empty()) {
            survey.hints.push_back(hint);
        }
    }
}

ModuleSurvey SurveyScanModule(const VendorInfo& vendor) {
    return Survey("scan", vendor.scanModuleName, kScanExports);
}

ModuleSurvey SurveyConfigurationModule(const VendorInfo& vendor) {
    return Survey("network configuration and USB", vendor.vendorName, kConfigurationExports);
}

ServiceSurvey SurveyConfiguration(const std::vector<std::string>& entryPoints) {
    const PrinterUtil::VendorListReport list = PrinterUtil::DescribeVendorList();
    ServiceSurvey survey{false, list.problems};
    for (const VendorInfo& vendor : list.vendors) {
        const ModuleSurvey module = SurveyConfigurationModule(vendor);
        std::string problem = module.problem;
        for (const std::string& name : entryPoints) {
            if (problem.empty() && !module.Has(name)) {
                problem = "module " + module.path + " has no entry point " + name;
            }
        }
        if (problem.empty()) {
            survey.anyVendorServes = true;
        } else {
            survey.problems.push_back("vendor " + vendor.productId + ": " + problem);
        }
    }
    return survey;
}

ScanSurvey SurveyScans() {
    const PrinterUtil::VendorListReport list = PrinterUtil::DescribeVendorList();
    ScanSurvey survey{{}, {}, list.problems};
    for (const VendorInfo& vendor : list.vendors) {
        survey.listed.insert(vendor.productId);
        if (vendor.scanModuleName.empty()) {
            continue;  // a vendor without a scan module
        }
        const ModuleSurvey module = SurveyScanModule(vendor);
        if (!module.IsLoaded()) {
            survey.problems.push_back("vendor " + vendor.productId + ": " + module.problem);
        } else if (!module.Has("StartDeviceScan")) {
            survey.problems.push_back("vendor " + vendor.productId + ": module " + module.path +
                                      " has no entry point StartDeviceScan");
        } else {
            survey.vendors.push_back(vendor.productId);
        }
    }
    return survey;
}

}  // namespace App
