// SPDX-License-Identifier: Apache-2.0

// What is left of a pass phrase in the memory of a process that has given it to a printer.

#include <gmock/gmock.h>
#include <string.h>

#include <future>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/application.h"
#include "tests/support/broker_test.h"
#include "tests/support/own_memory_linux.h"

namespace {

using PrinterDeviceDiscoverSdk::DiscoverNetConnInterface;
using PrinterDeviceDiscoverSdk::DiscoverUsbInterface;
using PrinterDeviceDiscoverSdk::WifiConfigInfo;
using testing::IsEmpty;

#define END_OF_SECRET "correct horse 7"
#define PASS_PHRASE "a long way, " END_OF_SECRET
static_assert(sizeof PASS_PHRASE <= sizeof WifiConfigInfo::pwd);

class PassPhraseMemory : public BrokerTest {
protected:
    void SetUp() override {
        VendorInfo vendor = ScriptedVendors::Vendor("alpha", "scripted_all");
        vendor.usbIdList = "VID_1234&PID_ABCD";
        ScriptedVendors::Support({vendor});
        DiscoverNetConnInterface::GetInstance().PrinterAPNetConfigEvent(NetworkOf("first"));
        DiscoverUsbInterface::GetInstance().SetDeviceAPNetConfigByUsb(DeviceOf("alpha"),
                                                                      NetworkOf("first"));
        ScriptedModule("scripted_all").Script("forgetful");
        RecordingLog::Ignore();
    }

    struct Outcome {
        int result;
        std::vector<std::string> places;  // where the pass phrase is still
    };

    // What becomes of `configure`, whose record is wiped behind it. Its stack is left as it is
    // until the memory has been searched.
    template <class Configure>
    static Outcome Give(Configure configure) {
        std::promise<int> result;
        std::promise<void> searched;
        std::thread giver([&] {
            result.set_value(GiveHere(configure));
            searched.get_future().wait();
        });
        Outcome outcome{result.get_future().get(), {}};
        outcome.places = PlacesInOwnMemory(END_OF_SECRET);
        searched.set_value();
        giver.join();
        return outcome;
    }

    template <class Configure>
    static int GiveHere(Configure configure) {
        WifiConfigInfo network{};
        // A name without an end runs on into the pass phrase, also in the log.
        memset(network.ssid, 'n', sizeof network.ssid);
        memcpy(network.pwd, PASS_PHRASE, sizeof PASS_PHRASE);
        const int result = configure(network);
        explicit_bzero(&network, sizeof network);
        return result;
    }

    static std::size_t Calls() { return ScriptedModule("scripted_all").Calls().size(); }
};

TEST_F(PassPhraseMemory, HoldsNoneAfterASetUpOverAnAccessPoint) {
    const std::size_t before = Calls();
    const Outcome outcome = Give([](const WifiConfigInfo& network) {
        return DiscoverNetConnInterface::GetInstance().PrinterAPNetConfigEvent(network);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(Calls(), before + 2);
    EXPECT_THAT(outcome.places, IsEmpty());
}

TEST_F(PassPhraseMemory, HoldsNoneAfterASetUpOverUsb) {
    const auto device = DeviceOf("alpha");
    const std::size_t before = Calls();
    const Outcome outcome = Give([&](const WifiConfigInfo& network) {
        return DiscoverUsbInterface::GetInstance().SetDeviceAPNetConfigByUsb(device, network);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(Calls(), before + 1);
    EXPECT_THAT(outcome.places, IsEmpty());
}

}  // namespace
