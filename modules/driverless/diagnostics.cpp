#include "diagnostics.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

#include "text.h"

namespace Driverless {

namespace {

// Opened on first use and kept: lines may come until the process is gone.
int LogFile() {
    static const int file = [] {
        const char* path = std::getenv("DRIVERLESS_LOG");
        const bool named = path != nullptr && *path != '\0';
        return named ? open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600) : -1;
    }();
    return file;
}

void WriteLine(int file, const std::string& message) {
    const std::string line = "driverless: " + CleanText(message) + "\n";
    [[maybe_unused]] const ssize_t written = write(file, line.data(), line.size());
}

}  // namespace

void ReportProblem(const std::string& message) {
    const int file = LogFile();
    WriteLine(file < 0 ? STDERR_FILENO : file, message);
}

void ReportDetail(const std::string& message) {
    const int file = LogFile();
    if (file >= 0) {
        WriteLine(file, message);
    }
}

}  // namespace Driverless
