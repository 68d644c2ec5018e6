// SPDX-License-Identifier: Apache-2.0

// A vendor's thread that is cancelled while it is inside the library: it ends, and nothing else
// does.

#include <pthread.h>

#include "tests/support/application.h"
#include "tests/support/broker_test.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;

void EndThread(const RecordingLog::Line&) {
    pthread_cancel(pthread_self());
    pthread_testcancel();
}

// What became of a thread that runs `body`.
void* EndOf(void* (*body)(void*), void* argument) {
    pthread_t thread{};
    EXPECT_EQ(pthread_create(&thread, nullptr, body, argument), 0);
    void* result = nullptr;
    EXPECT_EQ(pthread_join(thread, &result), 0);
    return result;
}

class Cancellation : public BrokerTest {
protected:
    void TearDown() override {
        RecordingLog::OnLine({});
        BrokerTest::TearDown();
    }
};

TEST_F(Cancellation, InsideTheLoggerEndsTheThreadAlone) {
    VendorSdk::DeviceCallbackInfo* const registration =
        ScanInterfaceListener::GetInstance().SetDeviceCallbackInfo({Application::OnDevice, 1});
    const auto report = [](void* argument) -> void* {
        const VendorSdk::DeviceInfo device{};
        static_cast<VendorSdk::DeviceCallbackInfo*>(argument)->callback(&device);
        return nullptr;
    };
    RecordingLog::OnLine(EndThread);
    EXPECT_EQ(EndOf(report, registration), PTHREAD_CANCELED);
    RecordingLog::OnLine({});
    EXPECT_EQ(EndOf(report, registration), nullptr);
    EXPECT_EQ(Application::Reports().size(), 1u);
}

}  // namespace
