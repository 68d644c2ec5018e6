// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/vendor_list.h"

#include "host/PrinterUtil/list/vendor_list_state.h"
#include "host/PrinterUtil/modules/loading_note.h"
#include "host/PrinterUtil/modules/module_finder.h"

namespace PrinterUtil {

void UseVendorList(const std::string& path) {
    VendorListState::GetInstance().Use(path);
}

VendorListReport DescribeVendorList() {
    return VendorListState::GetInstance().Read();
}

ModuleReport DescribeModule(const std::string& moduleName) {
    std::string problem;
    const std::string folder = VendorListState::GetInstance().ModuleFolder(problem);
    if (folder.empty()) {
        return {{}, nullptr, problem};
    }
    return OpenModule(folder, moduleName);
}

std::string ModuleBeingLoaded() {
    return LoadingNote::Latest();
}

std::size_t ReadModulesBeingLoaded(char* text, std::size_t size) {
    return LoadingNote::ReadAll(text, size);
}

}  // namespace PrinterUtil
