#include "platform/PrinterUtil/VendorDllMgr.h"

#include <exception>
#include <iterator>

#include "host/PrinterUtil/vendor_list.h"
#include "host/common/utf8.h"
#include "platform/LogHelper/KzLogger.h"

namespace {

constexpr int kListRead = 0;
constexpr int kListHasProblems = -1;

// Logs one line about a problem; a logger that fails must not fail its caller.
void LogProblem(const std::string& problem, const wchar_t* where) noexcept {
    try {
        std::wstringstream line;
        line << Host::FromUtf8(problem) << L"(" << where << L")";
        KzLogger::GetInstance().Log(LOG_LEVEL_ERROR, line);
    } catch (...) {
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
        for (const std::string& problem : report.problems) {
            LogProblem(problem, where);
        }
        vendors.insert(vendors.end(), std::make_move_iterator(report.vendors.begin()),
                       std::make_move_iterator(report.vendors.end()));
        return report.problems.empty() ? kListRead : kListHasProblems;
    } catch (const std::exception& error) {
        LogProblem(std::string("vendor list: ") + error.what(), where);
        return kListHasProblems;
    }
}

bool VendorDllMgr::GetDeviceHandle(HINSTANCE& module, const std::string& moduleName) {
    constexpr const wchar_t* where = L"VendorDllMgr::GetDeviceHandle";
    try {
        const PrinterUtil::ModuleReport report = PrinterUtil::DescribeModule(moduleName);
        if (report.module == nullptr) {
            LogProblem(report.problem, where);
            return false;
        }
        module = report.module;
        return true;
    } catch (const std::exception& error) {
        LogProblem(std::string("module: ") + error.what(), where);
        return false;
    }
}
