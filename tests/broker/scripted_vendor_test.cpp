// SPDX-License-Identifier: Apache-2.0

// The scripted vendors' own promises: what the other tests rely on.

#include <chrono>
#include <fstream>

#include "platform/os_calls.h"
#include "tests/support/application.h"
#include "tests/support/broker_test.h"
#include "tests/support/process.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Support;
using ScriptedVendors::Vendor;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ScriptedVendorTest : public BrokerTest {
protected:
    static void Scan() {
        ASSERT_EQ(ScanInterface::GetInstance().StartDeviceScan({Application::OnDevice, 1}), 0);
    }
};

TEST_F(ScriptedVendorTest, FollowsTheLinesForAllAndThoseForItself) {
    const std::string script = Process::FreshFile("script");
    std::ofstream(script)
        << "# for all\n"
           "result StopDeviceScan 3\n"
           "device \"A\\x41\\xff\\\"\\\\\\n\\t\" \"alpha\" \"e 1\" \"\" \"e3\" 65535 2\n"
           "\n"
           "[scripted_all_b]\n"
           "result StopDeviceScan 4   # only there\r\n"
           "[scripted_all_c]\n"
           "result StopDeviceScan 5\n";
    Process::SetEnvironment("SCRIPTED_VENDOR_SCRIPT", script);
    Support({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b")});
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), 4);
    Scan();
    for (const char* name : {"scripted_all", "scripted_all_b"}) {
        ScriptedModule(name).AwaitCallbacks(1);
    }
    VendorSdk::DeviceInfo expected{};
    SetField(expected.deviceSN, "AA\xff\"\\\n\t");
    SetField(expected.modelID, "alpha");
    SetField(expected.extra1, "e 1");
    SetField(expected.extra3, "e3");
    expected.code1 = 65535;
    expected.code2 = 2;
    ASSERT_THAT(Application::Reports(), SizeIs(2));
    EXPECT_EQ(Application::Reports()[0].bytes, BytesOf(expected));
    EXPECT_EQ(Application::Reports()[1].bytes, BytesOf(expected));
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), 4);
    Process::FreshFile("script");
}

TEST_F(ScriptedVendorTest, RecordsCallsWithTheirBytesAndCallbackResults) {
    const std::string record = Process::FreshFile("record");
    Process::SetEnvironment("SCRIPTED_VENDOR_RECORD", record);
    Support({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    module.AddDevice(VendorDeviceOf("alpha"));
    Application::AnswerWith([](const DeviceInfo&) { return -8; });
    DeviceInfo device{};
    device.code1 = 0x1234;
    SetField(device.deviceSN, "S");
    SetField(device.modelID, "alpha");
    EXPECT_EQ(ScanInterface::GetInstance().ConnectFailNotifyEvent(device), 0);
    Scan();
    module.AwaitCallbacks(1);
    ScanInterface::GetInstance().StopDeviceScan();
    const std::vector<std::string> lines = Process::LinesOf(record);
    ASSERT_THAT(lines, SizeIs(4));
    EXPECT_EQ(lines[0],
              "scripted_all ConnectFailNotifyEvent 34120000"
              "53" +
                  std::string(126, '0') + "616c706861" + std::string(2 * (228 - 68 - 5), '0'));
    EXPECT_EQ(lines[1].substr(0, 29), "scripted_all StartDeviceScan ");
    EXPECT_THAT(lines[1], SizeIs(29 + 32));
    EXPECT_EQ(lines[1].substr(29 + 16, 8), "01000000");
    EXPECT_EQ(lines[2], "scripted_all callback -8");
    EXPECT_EQ(lines[3], "scripted_all StopDeviceScan -");
    Process::FreshFile("record");
}

TEST_F(ScriptedVendorTest, RecordsEveryLineWholeWhenModulesWriteAtOnce) {
    const std::string record = Process::FreshFile("record");
    Process::SetEnvironment("SCRIPTED_VENDOR_RECORD", record);
    Support({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b")});
    for (const char* name : {"scripted_all", "scripted_all_b"}) {
        ScriptedModule(name).Script("threads 4\nrepeat 25");
        ScriptedModule(name).AddDevice(VendorDeviceOf("alpha"));
    }
    Scan();
    std::size_t callbacks = 0;
    for (const char* name : {"scripted_all", "scripted_all_b"}) {
        ScriptedModule(name).AwaitCallbacks(100);
        ScriptedModule(name).AwaitRunningScans(0);
    }
    for (const std::string& line : Process::LinesOf(record)) {
        callbacks +=
            line == "scripted_all callback 0" || line == "scripted_all_b callback 0" ? 1u : 0u;
    }
    EXPECT_EQ(callbacks, 200u);
    EXPECT_THAT(Process::LinesOf(record), SizeIs(202));
    Process::FreshFile("record");
}

TEST_F(ScriptedVendorTest, NamesLinesThatMakeNoSense) {
    Support({Vendor("alpha", "scripted_all")});
    ScanInterface::GetInstance();
    using Control = VendorSdk::ScriptedVendorControlFunction;
    auto* const control = reinterpret_cast<Control*>(reinterpret_cast<void (*)()>(
        GetProcAddress(ScriptedVendors::Given("scripted_all"), "ScriptedVendorControl")));
    testing::internal::CaptureStderr();
    EXPECT_EQ(
        control()->Script("dance\n"
                          "result StopDeviceScan 4\n"
                          "result StopDeviceScan\n"
                          "result NoSuchEntry 4\n"
                          "result StopDeviceScan four\n"
                          "result StopDeviceScan 4000000000\n"
                          "device \"unfinished\n"
                          "device \"\\q\" \"\" \"\" \"\" \"\" 1 2\n"
                          "device \"\\x4\" \"\" \"\" \"\" \"\" 1 2\n"
                          "device \"a\" \"a modelID of far too many letters\" \"\" \"\" \"\" 1 2\n"
                          "device \"a\" \"\" \"\" \"\" \"\" 65536 2\n"
                          "threads 0\n"
                          "count StopDeviceScan 3\n"),
        12);
    const std::string complaints = testing::internal::GetCapturedStderr();
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), 4);
    std::istringstream lines(complaints);
    std::vector<std::string> each;
    for (std::string line; std::getline(lines, line);) {
        each.push_back(line);
    }
    const std::string start = "scripted_all: script:";
    EXPECT_THAT(
        each,
        ElementsAre(
            start + "1: unknown directive \"dance\"", start + "3: result takes 2 values, not 1",
            start + "4: \"NoSuchEntry\" is no entry point", start + "5: \"four\" is no number",
            start + "6: \"4000000000\" is out of range", start + "7: a quotation mark is missing",
            start + "8: unknown escape \\q", start + "9: \\x needs two hexadecimal digits",
            start + "10: \"a modelID of far too many letters\" is longer than its field of "
                    "32 bytes",
            start + "11: \"65536\" is out of range", start + "12: \"0\" is out of range",
            start + "13: \"StopDeviceScan\" writes no count"));
}

TEST_F(ScriptedVendorTest, ReportsAsOftenAsScriptedAndPausesBetween) {
    Support({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    module.Script("threads 2\nrepeat 3\ninterval 20");
    module.AddDevice(VendorDeviceOf("alpha"));
    module.AddDevice(VendorDeviceOf("beta"));
    const auto begin = std::chrono::steady_clock::now();
    Scan();
    module.AwaitCallbacks(12);
    module.AwaitRunningScans(0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(100));
    EXPECT_THAT(module.CallbackResults(), SizeIs(12));
}

TEST_F(ScriptedVendorTest, StopsReportingWhenStopped) {
    Support({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    module.Script("repeat 0\ninterval 1");
    module.AddDevice(VendorDeviceOf("alpha"));
    Scan();
    module.AwaitCallbacks(5);
    EXPECT_EQ(module.RunningScans(), 1);
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), 0);
    module.AwaitRunningScans(0);
}

TEST_F(ScriptedVendorTest, ReportsAfterAStopOnlyOnceItHasReturned) {
    Support({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    module.Script("after-stop 2\ninterval 300");
    module.AddDevice(VendorDeviceOf("alpha"));
    Scan();
    module.AwaitCallbacks(1);
    module.AwaitRunningScans(0);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), 0);
    EXPECT_THAT(module.CallbackResults(), SizeIs(1));
    module.AwaitCallbacks(3);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(600));
    EXPECT_THAT(module.CallbackResults(), SizeIs(3));
}

TEST_F(ScriptedVendorTest, TakesItsTime) {
    Support({Vendor("alpha", "scripted_all")});
    ScriptedModule("scripted_all").Script("delay GetDeviceConnectState 150");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ScanInterface::GetInstance().GetDeviceConnectState(DeviceOf("alpha")), 1);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(150));
}

TEST_F(ScriptedVendorTest, HasNothingToReportToBeforeItsFirstScan) {
    Support({Vendor("alpha", "scripted_all")});
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    EXPECT_EQ(ScriptedModule("scripted_all").ReportNow(&device), -1);
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
}

}  // namespace
