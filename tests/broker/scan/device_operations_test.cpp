// SPDX-License-Identifier: Apache-2.0

// The four operations on one device, through each layer that offers them.

#include <cstring>

#include "tests/support/broker_test.h"
#include "tests/support/guarded_memory.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Support;
using ScriptedVendors::Vendor;
using testing::ElementsAre;
using testing::IsEmpty;

using OfDispatcher = int (ScanInterface::*)(const DeviceInfo&);
using OfFacade = int (DiscoverScanInterface::*)(const DeviceInfo&);
using Free = int (*)(const DeviceInfo*);

struct Operation {
    std::string name;
    int success;
    OfDispatcher ofDispatcher;
    OfFacade ofFacade;
    Free free;
};

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

class DeviceOperation : public BrokerTest, public testing::WithParamInterface<Operation> {
protected:
    static const std::string& Name() { return GetParam().name; }
    static int Success() { return GetParam().success; }
    static std::string Location() { return "ScanInterface::" + Name(); }

    static int Call(const DeviceInfo& device) {
        return (ScanInterface::GetInstance().*GetParam().ofDispatcher)(device);
    }
    static int CallFacade(const DeviceInfo& device) {
        return (DiscoverScanInterface::GetInstance().*GetParam().ofFacade)(device);
    }
    static int CallFree(const DeviceInfo& device) { return GetParam().free(&device); }

    static void Bind(std::vector<VendorInfo> vendors) {
        Support(std::move(vendors));
        ScanInterface::GetInstance();
        TakeLines();
    }
    static void Script(const std::string& moduleName, int result) {
        ScriptedModule(moduleName).Script("result " + Name() + ' ' + std::to_string(result));
    }
    // What the dispatcher logs of a vendor's result.
    static std::vector<std::string> ResultLines(int result) {
        if (result != Success()) {
            return {LineIs(4, "call Func Fail" + std::to_string(result), Location())};
        }
        return {LineIs(1, Success() == 0 ? "call Func OK" : "call Func OK1", Location())};
    }
    static std::vector<std::string> FacadeLines(const std::string& deviceSN,
                                                const std::string& modelID) {
        return {LineIs(1, "deviceSN" + deviceSN, "DiscoverScanInterface::" + Name()),
                LineIs(1, "modelID" + modelID, "DiscoverScanInterface::" + Name())};
    }
};

TEST_P(DeviceOperation, ReturnsTheVendorsResultAndLogsWhetherItIsSuccess) {
    Bind({Vendor("alpha", "scripted_all")});
    for (const int result : {0, 1, 2, -1, -2, -3, 2147483647, -2147483647 - 1}) {
        Script("scripted_all", result);
        EXPECT_EQ(Call(DeviceOf("alpha")), result);
        EXPECT_EQ(TakeLines(), ResultLines(result));
    }
}

TEST_P(DeviceOperation, GoesToTheDevicesVendorAndToNobodyElse) {
    Bind({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b"),
          Vendor("gamma", "scripted_all_c")});
    Script("scripted_all_b", 41);
    EXPECT_EQ(Call(DeviceOf("beta")), 41);
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
    EXPECT_THAT(ScriptedModule("scripted_all_b").CallNames(), ElementsAre(Name()));
    EXPECT_THAT(ScriptedModule("scripted_all_c").Calls(), IsEmpty());
}

TEST_P(DeviceOperation, WithoutAVendorForTheModelHasNothingToCall) {
    Bind({Vendor("alpha", "scripted_all")});
    for (const char* model : {"beta", "Alpha", "ALPHA", "alph", "alphab", " alpha", "alpha ", ""}) {
        EXPECT_EQ(Call(DeviceOf(model)), kNothingToCall) << model;
        EXPECT_THAT(TakeLines(), ElementsAre(LineIs(4, "call Func map find fail:", Location())));
    }
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
}

TEST_P(DeviceOperation, ThatTheVendorLacksHasNothingToCall) {
    Bind({Vendor("alpha", "scripted_without_" + Name()), Vendor("beta", "scripted_all")});
    EXPECT_EQ(Call(DeviceOf("alpha")), kNothingToCall);
    EXPECT_THAT(TakeLines(), ElementsAre(LineIs(4, "call pFunc is nullptr - fail:", Location())));
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
}

TEST_P(DeviceOperation, GivesTheVendorACopyOfEveryByte) {
    Bind({Vendor("alpha", "scripted_all")});
    const DeviceInfo device = DeviceOf("alpha");
    const std::string before = BytesOf(device);
    Call(device);
    EXPECT_EQ(BytesOf(device), before);
    const std::vector<ScriptedVendor::Call> calls = ScriptedModule("scripted_all").Calls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].entryPoint, Name());
    EXPECT_NE(calls[0].argument, &device);
    EXPECT_EQ(BytesOf(calls[0]), before);
}

TEST_P(DeviceOperation, GivesTheVendorUnterminatedFieldsAsTheyAre) {
    Bind({Vendor(std::string(32, 'M'), "scripted_all")});
    DeviceInfo device = DeviceOf(std::string(32, 'M'));
    SetField(device.modelID, std::string(32, 'M'));
    SetField(device.deviceSN, std::string(64, 'S'));
    SetField(device.extra1, "");
    EXPECT_EQ(Call(device), Success());
    EXPECT_EQ(BytesOf(ScriptedModule("scripted_all").Calls().at(0)), BytesOf(device));
}

TEST_P(DeviceOperation, ReadsAModelWithoutATerminatorOnIntoTheNextField) {
    Bind({Vendor(std::string(32, 'M') + "tail", "scripted_all"),
          Vendor(std::string(32, 'M'), "scripted_none")});
    DeviceInfo device{};
    SetField(device.modelID, std::string(32, 'M'));
    SetField(device.extra1, "tail");
    EXPECT_EQ(Call(device), Success());
}

TEST_P(DeviceOperation, ReadsNoTextBeyondTheRecord) {
    const std::string endless = std::string(32, 'M') + std::string(128, 'x');
    Bind({Vendor(endless, "scripted_all")});
    Guarded<DeviceInfo> device;
    std::memset(&*device, 'x', sizeof *device);
    SetField(device->modelID, std::string(32, 'M'));
    EXPECT_EQ(Call(*device), Success());
    TakeLines();
    EXPECT_EQ(CallFacade(*device), Success());
    EXPECT_EQ(TakeLines(),
              FacadeLines(std::string(64, 'x') + endless, endless) + ResultLines(Success()));
}

TEST_P(DeviceOperation, OfAnEmptyModelGoesToTheVendorWithoutAName) {
    Bind({Vendor("", "scripted_all")});
    EXPECT_EQ(Call(DeviceOf("")), Success());
}

TEST_P(DeviceOperation, OfTheFacadeLogsSerialNumberAndModelFirst) {
    Bind({Vendor("alpha", "scripted_all")});
    for (const int result : {Success(), 9}) {
        Script("scripted_all", result);
        EXPECT_EQ(CallFacade(DeviceOf("alpha")), result);
        EXPECT_EQ(TakeLines(), FacadeLines("A1B2C3", "alpha") + ResultLines(result));
    }
}

TEST_P(DeviceOperation, OfTheFacadeLogsTheDeviceBeforeVendorsAreBound) {
    Support({Vendor("alpha", "scripted_all")});
    EXPECT_EQ(CallFacade(DeviceOf("alpha")), Success());
    EXPECT_EQ(TakeLines(),
              FacadeLines("A1B2C3", "alpha") + BindingLines("alpha") + ResultLines(Success()));
}

TEST_P(DeviceOperation, OfTheFacadeLogsEmptyTextsToo) {
    Bind({Vendor("alpha", "scripted_all")});
    EXPECT_EQ(CallFacade(DeviceInfo{}), kNothingToCall);
    EXPECT_EQ(TakeLines(),
              FacadeLines("", "") + Lines({LineIs(4, "call Func map find fail:", Location())}));
}

TEST_P(DeviceOperation, OfTheFacadeIsRefusedLikeTheDispatchers) {
    EXPECT_EQ(CallFacade(DeviceOf("alpha")), kNotInitialised);
    EXPECT_EQ(TakeLines(), FacadeLines("A1B2C3", "alpha") +
                               Lines({LineIs(4, "vendorList is empty. DeleteAllVendor",
                                             "ScanInterface::GetDeviceFunc"),
                                      LineIs(4, "NOINITOK", Location())}));
}

TEST_P(DeviceOperation, OfTheFacadeLogsEachByteBeyondAsciiAsOneCharacter) {
    Bind({Vendor("alpha", "scripted_all")});
    DeviceInfo device = DeviceOf("alpha");
    SetField(device.deviceSN, "\xC3\xA9\xFF");
    EXPECT_EQ(CallFacade(device), Success());
    const std::vector<RecordingLog::Line> lines = RecordingLog::Lines();
    const auto& widener = std::use_facet<std::ctype<wchar_t>>(std::locale());
    std::wstring expected = L"deviceSN";
    for (const char byte : {'\xC3', '\xA9', '\xFF'}) {
        expected += widener.widen(byte);
    }
    expected += L"(PrinterDeviceDiscoverSdk::DiscoverScanInterface::";
    for (const char letter : Name()) {
        expected += widener.widen(letter);
    }
    EXPECT_EQ(lines.at(0).text, expected + L")");
}

TEST_P(DeviceOperation, OfTheFreeFunctionsLogsNoLineOfItsOwn) {
    Bind({Vendor("alpha", "scripted_all")});
    for (const int result : {Success(), -9}) {
        Script("scripted_all", result);
        EXPECT_EQ(CallFree(DeviceOf("alpha")), result);
        EXPECT_EQ(TakeLines(), ResultLines(result));
    }
    EXPECT_EQ(CallFree(DeviceOf("nobody")), kNothingToCall);
}

TEST_P(DeviceOperation, OfTheFreeFunctionsBindsTheVendors) {
    Support({Vendor("alpha", "scripted_all")});
    const DeviceInfo device = DeviceOf("alpha");
    EXPECT_EQ(CallFree(device), Success());
    EXPECT_EQ(TakeLines(), BindingLines("alpha") + ResultLines(Success()));
    EXPECT_EQ(BytesOf(ScriptedModule("scripted_all").Calls().at(0)), BytesOf(device));
}

TEST_P(DeviceOperation, MayComeFirst) {
    Support({Vendor("alpha", "scripted_all")});
    EXPECT_EQ(Call(DeviceOf("alpha")), Success());
    EXPECT_EQ(TakeLines(), BindingLines("alpha") + ResultLines(Success()));
    EXPECT_THAT(ScriptedModule("scripted_all").CallNames(), ElementsAre(Name()));
}

// Looked at while the line is logged: what has been done by then, and what has not.
TEST_P(DeviceOperation, LogsTheDeviceBeforeAndTheResultAfterTheVendorsCall) {
    Bind({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    std::vector<std::size_t> calls;
    RecordingLog::OnLine(
        [&](const RecordingLog::Line&) { calls.push_back(module.Calls().size()); });
    EXPECT_EQ(CallFacade(DeviceOf("alpha")), Success());
    RecordingLog::OnLine({});
    EXPECT_THAT(calls, ElementsAre(0u, 0u, 1u));
}

TEST_P(DeviceOperation, LeavesTheListenerAlone) {
    Bind({Vendor("alpha", "scripted_all")});
    Call(DeviceOf("alpha"));
    TakeLines();
    // The listener's first use is still to come.
    ScanInterfaceListener::GetInstance();
    EXPECT_THAT(TakeLines(), ElementsAre(LineIs(1, "Clear info",
                                                "ScanInterfaceListener::ClearDeviceCallbackInfo")));
}

#define OPERATION(name, success)                                                  \
    Operation {                                                                   \
#name, success, &ScanInterface::name, &DiscoverScanInterface::name, &name \
    }

INSTANTIATE_TEST_SUITE_P(Each, DeviceOperation,
                         testing::Values(OPERATION(GetDeviceConnectState, 1),
                                         OPERATION(BeforeConnectEventNotify, 0),
                                         OPERATION(ConnectSuccessNotifyEvent, 0),
                                         OPERATION(ConnectFailNotifyEvent, 0)),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
