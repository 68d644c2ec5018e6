// SPDX-License-Identifier: Apache-2.0

#include "platform/PrinterUtil/VendorDllMgr.h"

#include <exception>
#include <iterator>

#include "base/first_lines.h"
#include "base/text/utf8.h"
#include "host/PrinterUtil/vendor_list.h"
#include "platform/LogHelper/KzLogger.h"
#include "platform/compiler.h"

namespace {

constexpr int kListRead = 0;
constexpr int kListHasProblems = -1;

// A failing logger must not make its caller fail.
void LogLine(LOG_MESSAGE_LEVEL level, const std::string& text, const wchar_t* where) {
    try {
        std::wstringstream line;
        line << Base::FromUtf8(text) << L"(" << where << L")";
        KzLogger::GetInstance().Log(level, line);
    }
    PLATFORM_CATCH_ALL {
        return;
    }
}

}  // namespace

VendorDllMgr& VendorDllMgr::GetInstance() {
    static VendorDllMgr& instance = *new VendorDllMgr;
    return instance;
}

int VendorDllMgr::GetCurrentSupportList(std::vector<VendorInfo>& vendors) {
    constexpr const wchar_t* where = L"VendorDllMgr::GetCurrentSupportList";
    try {
        PrinterUtil::VendorListReport report = PrinterUtil::DescribeVendorList();
        for (const std::string& problem : Base::FirstLines(report.problems)) {
            LogLine(LOG_LEVEL_ERROR, problem, where);
        }
        for (const std::string& note : Base::FirstLines(report.notes)) {
            LogLine(LOG_LEVEL_WARNING, note, where);
        }
        vendors.insert(vendors.end(), std::make_move_iterator(report.vendors.begin()),
                       std::make_move_iterator(report.vendors.end()));
        return report.problems.empty() ? kListRead : kListHasProblems;
    } catch (const std::exception& error) {
        LogLine(LOG_LEVEL_ERROR, std::string("vendor list: ") + error.what(), where);
        return kListHasProblems;
    }
}

bool VendorDllMgr::GetDeviceHandle(HINSTANCE& module, const std::string& moduleName) {
    constexpr const wchar_t* where = L"VendorDllMgr::GetDeviceHandle";
    try {
        const PrinterUtil::ModuleReport report = PrinterUtil::DescribeModule(moduleName);
        if (report.module == nullptr) {
            LogLine(LOG_LEVEL_ERROR, report.problem, where);
            return false;
        }
        module = report.module;
        return true;
    } catch (const std::exception& error) {
        LogLine(LOG_LEVEL_ERROR, std::string("module: ") + error.what(), where);
        return false;
    }
}
