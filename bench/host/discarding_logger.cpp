// SPDX-License-Identifier: Apache-2.0

#include "bench/host/discarding_logger.h"

namespace {

std::vector<std::wstring>* recorded = nullptr;

}  // namespace

KzLogger& KzLogger::GetInstance() {
    static KzLogger* const instance = new KzLogger;
    return *instance;
}

void KzLogger::Log(LOG_MESSAGE_LEVEL level, std::wstringstream& line) {
    if (recorded != nullptr) {
        recorded->push_back(std::to_wstring(static_cast<int>(level)) + L' ' + line.str());
    }
}

void Bench::RecordLines(std::vector<std::wstring>* lines) {
    recorded = lines;
}
