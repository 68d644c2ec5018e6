#include "platform/LogHelper/KzLogger.h"

KzLogger& KzLogger::GetInstance() {
    alignas(KzLogger) static char storage[sizeof(KzLogger)];
    return *reinterpret_cast<KzLogger*>(storage);
}

void KzLogger::Log(LOG_MESSAGE_LEVEL, std::wstringstream&) {}
