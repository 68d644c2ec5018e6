// SPDX-License-Identifier: Apache-2.0

// The way into the USB family: what it says, and what it does with the adapter's printers and the
// host's ports.

#include <cstring>
#include <stdexcept>

#include "tests/broker/usb/usb_support.h"
#include "tests/support/guarded_memory.h"
#include "tests/support/scripted_adapter.h"
#include "tests/support/scripted_host.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using PrinterSdk::PrinterProperty;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

DiscoverUsbInterface& It() {
    return DiscoverUsbInterface::GetInstance();
}

PrinterProperty Printer(std::int32_t connectType, const std::wstring& serialNumber,
                        const std::wstring& model = L"Laser") {
    PrinterProperty printer;
    printer.serialNumber = serialNumber;
    printer.modelID = model;
    printer.connectType = connectType;
    // What no one looks at.
    printer.name = printer.description = printer.deviceUri = printer.portName = L"name";
    printer.manufacturer = printer.location = printer.driverName = printer.state = L"other";
    return printer;
}
PrinterProperty OnUsb(const std::wstring& serialNumber, const std::wstring& model = L"Laser") {
    return Printer(1, serialNumber, model);
}
PrinterProperty OnWlan(const std::wstring& serialNumber) {
    return Printer(2, serialNumber);
}

class UsbPrinters : public UsbTest {
protected:
    static std::string Step(int level, const std::string& message) {
        return FacadeSaid(message, "GetDeviceNoConfigNet", level);
    }
    static Lines Begins() { return {Step(1, "Get usb Device printer list")}; }
    static Lines Converts(const std::string& serialNumber, const std::string& model = "Laser") {
        const std::string tag = "(PrinterPropertyToDeviceInfo)";
        return {"1 serialNumber:" + serialNumber + tag, "1 modelID:" + model + tag,
                Step(3, "get one usbInfo")};
    }

    static std::vector<DeviceUsbInfo> List(std::vector<PrinterProperty> printers) {
        ScriptedAdapter::Know(std::move(printers));
        std::vector<DeviceUsbInfo> devices;
        EXPECT_EQ(It().GetDeviceNoConfigNet(devices), 0);
        return devices;
    }

    // Serial number and flag of each.
    static Lines Summary(const std::vector<DeviceUsbInfo>& devices) {
        Lines summary;
        for (const DeviceUsbInfo& device : devices) {
            summary.push_back(device.deviceSN + std::string(device.isNetConfigured ? " 1" : " 0"));
        }
        return summary;
    }
};

TEST_F(UsbPrinters, AreListedWhetherTheyAreOnTheNetworkOrNot) {
    const std::vector<DeviceUsbInfo> devices =
        List({OnUsb(L"SN-1"), OnWlan(L"SN-2"), OnUsb(L"SN-2", L"Ink"), OnWlan(L"SN-3")});
    EXPECT_EQ(TakeLines(), Begins() +
                               Lines({Step(1, "get one Typeusb"), Step(1, "get one TypeWLAN"),
                                      Step(1, "get one Typeusb"), Step(1, "get one TypeWLAN")}) +
                               Converts("SN-1") + Converts("SN-2", "Ink"));
    EXPECT_THAT(Summary(devices), ElementsAre("SN-1 0", "SN-2 1"));
    EXPECT_STREQ(devices[0].modelID, "Laser");
    EXPECT_STREQ(devices[1].modelID, "Ink");
}

TEST_F(UsbPrinters, HaveZeroInEveryFieldThatTheAdapterDoesNotKnow) {
    const std::vector<DeviceUsbInfo> devices = List({OnUsb(L"SN-1"), OnWlan(L"SN-1")});
    ASSERT_THAT(devices, SizeIs(1));
    DeviceUsbInfo expected;
    std::memset(&expected, 0, sizeof expected);
    SetField(expected.deviceSN, "SN-1");
    SetField(expected.modelID, "Laser");
    expected.isNetConfigured = true;
    EXPECT_EQ(BytesOf(devices[0]), BytesOf(expected));
}

TEST_F(UsbPrinters, AreAskedForThroughTheAdaptersLastOperationAndTheListsFirst) {
    List({OnUsb(L"SN-1")});
    EXPECT_THAT(ScriptedAdapter::Calls(),
                ElementsAre("GetInstance", "GetPrinterListProvider", "GetPrinterList 0"));
    EXPECT_THAT(ScriptedVendors::Requests(), IsEmpty());
    EXPECT_THAT(ScriptedHost::UsbCalls(), IsEmpty());
}

TEST_F(UsbPrinters, AreAskedForOnceTheLineSaysSo) {
    const auto work = [] { List({OnUsb(L"SN-1")}); };
    EXPECT_THAT(CallsAtTheLine("Get usb Device printer list", ScriptedAdapter::Calls, work),
                ElementsAre(IsEmpty()));
}

TEST_F(UsbPrinters, OfOtherKindsAreNeitherListedNorLogged) {
    for (const int connectType : {0, 3, -1, 4, 2147483647}) {
        EXPECT_THAT(List({Printer(connectType, L"SN-1")}), IsEmpty()) << connectType;
        EXPECT_EQ(TakeLines(), Begins() + Lines({Step(3, "usbList is empty")}));
    }
    // They do not count as network printers either.
    EXPECT_THAT(Summary(List({OnUsb(L"SN-1"), Printer(0, L"SN-1"), Printer(3, L"SN-1")})),
                ElementsAre("SN-1 0"));
}

TEST_F(UsbPrinters, WithoutAnyOnUsbSaysSo) {
    EXPECT_THAT(List({OnWlan(L"SN-1")}), IsEmpty());
    EXPECT_EQ(TakeLines(),
              Begins() + Lines({Step(1, "get one TypeWLAN"), Step(3, "usbList is empty")}));
    EXPECT_THAT(List({}), IsEmpty());
    EXPECT_EQ(TakeLines(), Begins() + Lines({Step(3, "usbList is empty")}));
}

TEST_F(UsbPrinters, OfAnAdapterWithoutAListAreNone) {
    ScriptedAdapter::OfferList(false);
    EXPECT_THAT(List({OnUsb(L"SN-1")}), IsEmpty());
    EXPECT_EQ(TakeLines(), Begins() + Lines({Step(3, "usbList is empty")}));
}

TEST_F(UsbPrinters, ThatAreListedTwiceYieldTwoRecords) {
    EXPECT_THAT(Summary(List({OnUsb(L"SN-1"), OnUsb(L"SN-1"), OnWlan(L"SN-1"), OnWlan(L"SN-1")})),
                ElementsAre("SN-1 1", "SN-1 1"));
}

TEST_F(UsbPrinters, AreToldApartByTheWholeSerialNumberInItsLetters) {
    EXPECT_THAT(Summary(List({OnUsb(L"SN-1"), OnWlan(L"sn-1"), OnWlan(L"SN-"), OnWlan(L"SN-12"),
                              OnWlan(L" SN-1"), OnWlan(L"")})),
                ElementsAre("SN-1 0"));
    // The scripted conversion makes the same narrow text of both.
    EXPECT_THAT(Summary(List({OnUsb(L"SN-1"), OnWlan(std::wstring(1, L'S' + 0x100) + L"N-1")})),
                ElementsAre("SN-1 0"));
    EXPECT_THAT(Summary(List({OnUsb(std::wstring(L"SN\0A", 4)), OnWlan(std::wstring(L"SN\0B", 4)),
                              OnWlan(L"SN")})),
                ElementsAre("SN 0"));
}

TEST_F(UsbPrinters, WithoutASerialNumberAreTakenForAnyOtherWithoutOne) {
    EXPECT_THAT(Summary(List({OnUsb(L""), OnWlan(L"SN-1")})), ElementsAre(" 0"));
    EXPECT_THAT(Summary(List({OnUsb(L""), OnWlan(L"SN-1"), OnWlan(L"")})), ElementsAre(" 1"));
}

TEST_F(UsbPrinters, WithTextsThatDoNotFitHaveEmptyFields) {
    const std::wstring serial63(63, L's');
    const std::wstring serial64(64, L's');
    const std::wstring model31(31, L'm');
    const std::wstring model32(32, L'm');
    const std::vector<DeviceUsbInfo> devices =
        List({OnUsb(serial63, model31), OnUsb(serial64, model32), OnWlan(serial64)});
    ASSERT_THAT(devices, SizeIs(2));
    EXPECT_EQ(devices[0].deviceSN, std::string(63, 's'));
    EXPECT_EQ(devices[0].modelID, std::string(31, 'm'));
    EXPECT_STREQ(devices[1].deviceSN, "");
    EXPECT_STREQ(devices[1].modelID, "");
    EXPECT_TRUE(devices[1].isNetConfigured);
    const Lines lines = TakeLines();
    EXPECT_EQ(Lines(lines.end() - 3, lines.end()),
              Converts(std::string(64, 's'), std::string(32, 'm')));
}

TEST_F(UsbPrinters, AreAppendedToWhatIsThere) {
    ScriptedAdapter::Know({OnUsb(L"SN-1"), OnUsb(L"SN-2")});
    std::vector<DeviceUsbInfo> devices;
    EXPECT_EQ(It().GetDeviceNoConfigNet(devices), 0);
    EXPECT_EQ(It().GetDeviceNoConfigNet(devices), 0);
    EXPECT_THAT(Summary(devices), ElementsAre("SN-1 0", "SN-2 0", "SN-1 0", "SN-2 0"));
}

TEST_F(UsbPrinters, OfTwoThousandAreAllMatched) {
    RecordingLog::Discard();
    std::vector<PrinterProperty> printers;
    for (int number = 0; number < 1000; ++number) {
        printers.push_back(OnUsb(L"SN-" + std::to_wstring(number)));
        printers.push_back(OnWlan(L"SN-" + std::to_wstring(number * 2)));
    }
    const std::vector<DeviceUsbInfo> devices = List(printers);
    ASSERT_THAT(devices, SizeIs(1000));
    for (int number = 0; number < 1000; ++number) {
        EXPECT_EQ(devices[static_cast<std::size_t>(number)].isNetConfigured, number % 2 == 0);
    }
}

class UsbPorts : public UsbTest {
protected:
    static std::string Step(const std::string& message) {
        return FacadeSaid(message, "GetDeviceInfoByUsb");
    }
    static Lines Begins(int ports) {
        return {Step("Start GetCurrentPrinterPorts"),
                Step("Stop GetCurrentPrinterPorts" + std::to_string(ports))};
    }
};

TEST_F(UsbPorts, AreEnumeratedInTheOrderOfTheirIdentifiers) {
    With({Alpha(), Beta()});
    ScriptedHost::Plugged({{Wide(kOtherId), {1, 2}}, {Wide(kId), {3, 4}}});
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("alpha"));
    const ScriptedModule beta("scripted_all_b");
    beta.AddDevice(VendorDeviceOf("beta 1"));
    beta.AddDevice(VendorDeviceOf("beta 2"));
    std::vector<DeviceInfo> devices{DeviceOf("one")};
    EXPECT_EQ(It().GetDeviceInfoByUsb(devices), 0);
    ASSERT_THAT(devices, SizeIs(4));
    EXPECT_EQ(BytesOf(devices[0]), BytesOf(DeviceOf("one")));
    EXPECT_EQ(BytesOf(devices[1]), BytesOf(DeviceOf("alpha")));
    EXPECT_EQ(BytesOf(devices[2]), BytesOf(DeviceOf("beta 1")));
    EXPECT_EQ(BytesOf(devices[3]), BytesOf(DeviceOf("beta 2")));
    EXPECT_THAT(ScriptedHost::UsbCalls(), ElementsAre("GetCurrentPrinterPorts"));
    // Each port begins with an empty list of its own.
    const Lines add{EnumerationSaid(3, "STEP.....add")};
    EXPECT_EQ(TakeLines(),
              Begins(2) + Lines({Step("deviceId:" + std::string(kId))}) +
                  EnumerationBegins(kId, "pid:abcdvid1234") +
                  Lines({EnumerationSaid(1, "call Func OK1")}) + add +
                  Lines({EnumerationSaid(3, "STEP5"), EnumerationSaid(3, "STEP61"),
                         Step("call Func OK1"), Step("deviceId:" + std::string(kOtherId))}) +
                  EnumerationBegins(kOtherId, "pid:efvid5678") +
                  Lines({EnumerationSaid(1, "call Func OK2")}) + add + add +
                  Lines({EnumerationSaid(3, "STEP5"), EnumerationSaid(3, "STEP62"),
                         Step("call Func OK2")}));
}

TEST_F(UsbPorts, AreAskedForBetweenTheLinesThatSaySo) {
    const auto work = [] {
        std::vector<DeviceInfo> devices;
        It().GetDeviceInfoByUsb(devices);
    };
    EXPECT_THAT(CallsAtTheLine("Start GetCurrentPrinterPorts", ScriptedHost::UsbCalls, work),
                ElementsAre(IsEmpty()));
    EXPECT_THAT(CallsAtTheLine("Stop GetCurrentPrinterPorts", ScriptedHost::UsbCalls, work),
                ElementsAre(SizeIs(2)));
}

TEST_F(UsbPorts, OfWhichOneSucceedsAreASuccess) {
    With({Alpha(), Beta()});
    ScriptedHost::Plugged(
        {{Wide(kId), {1, 1}}, {Wide(kOtherId), {1, 1}}, {L"VID_9999&PID_9999", {1, 1}}});
    const ScriptedModule alpha("scripted_all");
    alpha.AddDevice(VendorDeviceOf("alpha"));
    alpha.Script("result GetDeviceInfoByUsb 3");
    ScriptedModule("scripted_all_b").AddDevice(VendorDeviceOf("beta"));
    std::vector<DeviceInfo> devices;
    EXPECT_EQ(It().GetDeviceInfoByUsb(devices), 0);
    ASSERT_THAT(devices, SizeIs(1));
    EXPECT_EQ(BytesOf(devices[0]), BytesOf(DeviceOf("beta")));
    Lines own;
    for (const std::string& line : TakeLines()) {
        if (line.find("DiscoverUsbInterface") != std::string::npos) {
            own.push_back(line);
        }
    }
    EXPECT_EQ(own, Begins(3) + Lines({Step("deviceId:" + std::string(kId)),
                                      Step("deviceId:" + std::string(kOtherId)),
                                      Step("call Func OK1"), Step("deviceId:VID_9999&PID_9999")}));
}

TEST_F(UsbPorts, OfWhichOneSucceedsWithoutAPrinterAreASuccess) {
    With({Alpha()});
    ScriptedHost::Plugged({{Wide(kId), {1, 1}}});
    std::vector<DeviceInfo> devices;
    EXPECT_EQ(It().GetDeviceInfoByUsb(devices), 0);
    EXPECT_THAT(devices, IsEmpty());
    EXPECT_EQ(TakeLines().back(), Step("call Func OK0"));
}

TEST_F(UsbPorts, OfWhichNoneSucceedsAreAFailure) {
    With({Alpha()});
    ScriptedModule("scripted_all").Script("result GetDeviceInfoByUsb 3");
    ScriptedHost::Plugged({{Wide(kId), {1, 1}}, {Wide(kOtherId), {1, 1}}});
    std::vector<DeviceInfo> devices{DeviceOf("one")};
    EXPECT_EQ(It().GetDeviceInfoByUsb(devices), kVendorFailed);
    EXPECT_THAT(devices, SizeIs(1));
}

TEST_F(UsbPorts, WithoutAnyAreAFailureForWhichNobodyIsAsked) {
    std::vector<DeviceInfo> devices;
    EXPECT_EQ(It().GetDeviceInfoByUsb(devices), kVendorFailed);
    EXPECT_EQ(TakeLines(), Begins(0));
    EXPECT_THAT(ScriptedVendors::Requests(), IsEmpty());
}

TEST_F(UsbPorts, WithoutVendorsAreAFailure) {
    With({});
    ScriptedHost::Plugged({{Wide(kId), {1, 1}}});
    std::vector<DeviceInfo> devices;
    EXPECT_EQ(It().GetDeviceInfoByUsb(devices), kVendorFailed);
    EXPECT_EQ(TakeLines(),
              Begins(1) + Lines({Step("deviceId:" + std::string(kId)), EnumerationSaid(3, "STEP1"),
                                 EnumerationSaid(4, "NOINITOK")}));
}

TEST_F(UsbPorts, OfWhichOneIsTooShortToHoldItsNumbersEndWithAnException) {
    With({Vendor("alpha", "scripted_all", std::string(kId) + " VID_9")});
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("one"));
    ScriptedHost::Plugged({{Wide(kId), {1, 1}}, {L"VID_9", {1, 1}}});
    std::vector<DeviceInfo> devices;
    EXPECT_THROW(It().GetDeviceInfoByUsb(devices), std::out_of_range);
    EXPECT_THAT(devices, SizeIs(1)) << "what was found before stays";
}

class UsbFacade : public UsbTest {};

TEST_F(UsbFacade, BindsNothingItself) {
    EXPECT_EQ(&It(), &It());
    EXPECT_THAT(ScriptedVendors::Requests(), IsEmpty());
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_F(UsbFacade, LogsThePassPhraseInClearAndBeforeTheName) {
    With({Alpha()});
    const char* const name = "SetDeviceAPNetConfigByUsb";
    EXPECT_EQ(It().SetDeviceAPNetConfigByUsb(DeviceOf("alpha"), NetworkOf("office")), 0);
    EXPECT_THAT(TakeLines(),
                ElementsAre(FacadeSaid("deviceSNA1B2C3", name), FacadeSaid("modelIDalpha", name),
                            FacadeSaid("pwdpass office", name), FacadeSaid("ssidoffice", name),
                            Said(1, "modeid:alpha", "PrinterUSBNetConfigEvent"),
                            Said(1, "call Func OK", "PrinterUSBNetConfigEvent")));
}

TEST_F(UsbFacade, ReturnsTheResultsOfTheDispatcherUnchanged) {
    With({Alpha()});
    std::vector<WifiConfigInfo> networks;
    EXPECT_EQ(It().SetDeviceAPNetConfigByUsb(DeviceOf("beta"), NetworkOf("office")),
              kNothingToCall);
    EXPECT_EQ(It().GetUSBWifiScan(DeviceOf("beta"), networks, 0), kNothingToCall);
    ScriptedModule("scripted_all")
        .Script("result PrinterUSBNetConfigEvent 5\nresult USBWifiScan 5");
    EXPECT_EQ(It().SetDeviceAPNetConfigByUsb(DeviceOf("alpha"), NetworkOf("office")),
              kVendorFailed);
    EXPECT_EQ(It().GetUSBWifiScan(DeviceOf("alpha"), networks, 0), 5);
}

TEST_F(UsbFacade, LogsTheDeviceOfAScanAndHandsOnListAndOption) {
    With({Alpha()});
    ScriptedModule("scripted_all").AddNetwork(VendorNetworkOf("office"));
    std::vector<WifiConfigInfo> networks{NetworkOf("one")};
    EXPECT_EQ(It().GetUSBWifiScan(DeviceOf("alpha"), networks, -77), 0);
    const Lines lines = TakeLines();
    ASSERT_GT(lines.size(), 3u);
    EXPECT_EQ(lines[0], FacadeSaid("deviceSNA1B2C3", "GetUSBWifiScan"));
    EXPECT_EQ(lines[1], FacadeSaid("modelIDalpha", "GetUSBWifiScan"));
    EXPECT_EQ(lines[2], Said(3, "STEP1", "GetUSBWifiScan"));
    ASSERT_THAT(networks, SizeIs(2));
    EXPECT_STREQ(networks[1].ssid, "office");
    ScriptedVendor::UsbWifiScan question{};
    std::memcpy(&question, ScriptedModule("scripted_all").Calls().back().bytes, sizeof question);
    EXPECT_EQ(question.option, -77);
}

TEST_F(UsbFacade, ReadsTextsWithoutATerminatorNoFurtherThanTheirRecord) {
    With({Alpha()});
    Guarded<DeviceInfo> device;
    Guarded<WifiConfigInfo> network;
    std::memset(&*device, 'd', sizeof *device);
    std::memset(&*network, 'n', sizeof *network);
    EXPECT_EQ(It().SetDeviceAPNetConfigByUsb(*device, *network), kNothingToCall);
    const Lines lines = TakeLines();
    const char* const name = "SetDeviceAPNetConfigByUsb";
    EXPECT_EQ(lines.at(0), FacadeSaid("deviceSN" + std::string(64 + 32 + 128, 'd'), name));
    EXPECT_EQ(lines.at(1), FacadeSaid("modelID" + std::string(32 + 128, 'd'), name));
    EXPECT_EQ(lines.at(2), FacadeSaid("pwd" + std::string(32, 'n'), name));
    EXPECT_EQ(lines.at(3), FacadeSaid("ssid" + std::string(128 + 32, 'n'), name));
}

TEST_F(UsbFacade, SaysItsLinesBeforeTheVendorsAreBound) {
    std::vector<WifiConfigInfo> networks;
    EXPECT_EQ(It().GetUSBWifiScan(DeviceOf("alpha"), networks, 0), kNotInitialised);
    EXPECT_THAT(
        TakeLines(),
        ElementsAre(FacadeSaid("deviceSNA1B2C3", "GetUSBWifiScan"),
                    FacadeSaid("modelIDalpha", "GetUSBWifiScan"),
                    Said(4, "vendorList is empty. DeleteAllVendor", "GetDeviceFunc"),
                    Said(3, "STEP1", "GetUSBWifiScan"), Said(4, "NOINITOK", "GetUSBWifiScan")));
}

TEST_F(UsbFacade, StartsAndStopsTheMonitor) {
    EXPECT_EQ(It().StartDeviceMonitor({Application::OnDevice, 77}), 0);
    EXPECT_THAT(TakeLines(), ElementsAre(FacadeSaid("Start usb Monitor", "StartDeviceMonitor"),
                                         ClearLine(), SetLine("77")));
    EXPECT_EQ(It().StopDeviceMonitor(), 0);
    EXPECT_THAT(TakeLines(),
                ElementsAre(FacadeSaid("Stop usb Monitor", "StopDeviceMonitor"), ClearLine()));
    EXPECT_THAT(ScriptedHost::UsbCalls(), ElementsAre("StartMonitor", "StopMonitor"));
    EXPECT_THAT(ScriptedVendors::Requests(), IsEmpty());
}

TEST_F(UsbFacade, RegistersBeforeItStartsTheManagerWithWhatItRegistered) {
    const auto work = [] { It().StartDeviceMonitor({Application::OnDevice, 77}); };
    EXPECT_THAT(CallsAtTheLine("Set info", ScriptedHost::UsbCalls, work), ElementsAre(IsEmpty()));
    EXPECT_EQ(ScriptedHost::MonitorAtItsStart().value, 77);
    EXPECT_NE(ScriptedHost::MonitorAtItsStart().callback, nullptr);
}

TEST_F(UsbFacade, KeepsTheRegistrationThatTheManagerHolds) {
    It().StartDeviceMonitor({Application::OnDevice, 77});
    const PrinterDiscoverAPI::DeviceStateChangeCallbackInfo* const held = ScriptedHost::Monitor();
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(static_cast<const void*>(held), static_cast<const void*>(&It()));
    EXPECT_EQ(held->value, 77);
    ASSERT_NE(held->callback, nullptr);
    const auto trampoline = held->callback;
    // A stop leaves it as it is; a further start replaces it.
    It().StopDeviceMonitor();
    EXPECT_EQ(held->value, 77);
    EXPECT_EQ(held->callback, trampoline);
    It().StartDeviceMonitor({Application::OnOtherDevice, -78});
    EXPECT_EQ(ScriptedHost::Monitor(), held);
    EXPECT_EQ(held->value, -78);
    EXPECT_EQ(held->callback, trampoline);
    EXPECT_EQ(ScriptedHost::MonitorAtItsStart().value, -78);
    EXPECT_THAT(ScriptedHost::UsbCalls(),
                ElementsAre("StartMonitor", "StopMonitor", "StartMonitor"));
}

TEST_F(UsbFacade, SaysNothingOfAManagerThatCannotStart) {
    ScriptedHost::AnswerStarts(-1);
    EXPECT_EQ(It().StartDeviceMonitor({Application::OnDevice, 1}), 0);
    EXPECT_THAT(TakeLines(), ElementsAre(FacadeSaid("Start usb Monitor", "StartDeviceMonitor"),
                                         ClearLine(), SetLine("1")));
    EXPECT_EQ(It().StopDeviceMonitor(), 0);
}

TEST_F(UsbFacade, ClearsTheRegistrationBeforeItStopsTheManager) {
    It().StartDeviceMonitor({Application::OnDevice, 1});
    EXPECT_THAT(
        CallsAtTheLine("Clear info", ScriptedHost::UsbCalls, [] { It().StopDeviceMonitor(); }),
        ElementsAre(ElementsAre("StartMonitor")));
}

TEST_F(UsbFacade, StopsWithoutAStart) {
    EXPECT_EQ(It().StopDeviceMonitor(), 0);
    EXPECT_THAT(TakeLines(), ElementsAre(FacadeSaid("Stop usb Monitor", "StopDeviceMonitor"),
                                         ClearLine(), ClearLine()));
    EXPECT_THAT(ScriptedHost::UsbCalls(), ElementsAre("StopMonitor"));
}

}  // namespace
