#include "host/PrinterUtil/file_trust.h"

#include "host/PrinterUtil/module_loader.h"
#include "host/common/paths.h"

namespace PrinterUtil {

namespace fs = std::filesystem;

std::string FileProblem(const fs::path& file) {
    std::error_code failure;
    const fs::file_status status = fs::status(file, failure);
    if (status.type() == fs::file_type::not_found) {
        return "there is no such file";
    }
    if (failure) {
        return failure.message();
    }
    if (status.type() != fs::file_type::regular) {
        return "not a regular file";
    }
    if (const std::string reason = WhyOthersMayChange(file); !reason.empty()) {
        return "refused: " + reason;
    }
    const fs::path target = LinkTarget(file);
    return target.empty() ? std::string() : FolderProblem(target.parent_path());
}

std::string FolderProblem(const fs::path& folder) {
    std::error_code failure;
    if (fs::status(folder, failure).type() == fs::file_type::not_found) {
        return "there is no folder " + Host::PathToUtf8(folder);
    }
    const std::string reason = WhyOthersMayChange(folder);
    return reason.empty() ? reason
                          : "refused: its folder " + Host::PathToUtf8(folder) + ": " + reason;
}

}  // namespace PrinterUtil
