// SPDX-License-Identifier: Apache-2.0

// The broker with the application's own PrinterUtil: vendors from a list in a file, modules loaded
// as the application loads them, and every line that comes of it.

#include <filesystem>
#include <fstream>

#include "host/PrinterUtil/vendor_list.h"
#include "tests/support/application.h"
#include "tests/support/broker_test.h"
#include "tests/support/process.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kStart[] = "ScanInterface::StartDeviceScan";

class RealVendors : public BrokerTest {
protected:
    void SetUp() override { PrinterUtil::UseVendorList(list); }
    void TearDown() override {
        BrokerTest::TearDown();
        std::filesystem::remove(list);
        Process::FreshFile("script");
        Process::FreshFile("record");
    }

    // A list whose modules are the scripted ones; each vendor as {product id, module}.
    void Write(const std::vector<std::pair<std::string, std::string>>& vendors) const {
        const std::filesystem::path own = Process::OwnFolder();
        const std::string folder = (own.parent_path().parent_path() / "modules").generic_string();
        std::ofstream file(list);
        file << R"({"moduleFolder": ")" << folder << R"(", "vendors": [)";
        const char* separator = "";
        for (const auto& [productId, module] : vendors) {
            file << separator << R"({"productId": ")" << productId << R"(", "scanModuleName": ")"
                 << module << R"(", "usbIdList": "-"})";
            separator = ", ";
        }
        file << "]}";
    }

    // The script of all modules, and the record of what they are asked.
    static std::string Follow(const std::string& lines) {
        const std::string script = Process::FreshFile("script");
        std::ofstream(script) << lines;
        Process::SetEnvironment("SCRIPTED_VENDOR_SCRIPT", script);
        const std::string record = Process::FreshFile("record");
        Process::SetEnvironment("SCRIPTED_VENDOR_RECORD", record);
        return record;
    }

    // The lines of the broker among those since the last: PrinterUtil logs lines of its own.
    static Lines TakeBrokersLines() {
        Lines lines;
        for (const std::string& line : TakeLines()) {
            if (line.find("(PrinterDeviceDiscoverSdk::") != std::string::npos) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    // Not in the system's folder for temporary files: PrinterUtil trusts no list there.
    const std::string list =
        Process::OwnFolder() +
        std::filesystem::path(Process::FreshFile("vendors.json")).filename().string();
};

TEST_F(RealVendors, AreBoundAsTheListSays) {
    Write({{"zeta", "scripted_all"}, {"alpha", "scripted_none"}, {"beta", "scripted_all_b"}});
    ScanInterface::GetInstance();
    EXPECT_EQ(TakeLines(),
              BindingLines("zeta") + BindingLinesWithoutAnything("alpha") + BindingLines("beta"));
}

TEST_F(RealVendors, WithoutAModuleArePassedOverByTheBrokerAndNamedByPrinterUtil) {
    Write({{"alpha", "no_such_module"}, {"beta", "scripted_broken"}, {"gamma", "scripted_all"}});
    ScanInterface& scan = ScanInterface::GetInstance();
    const std::vector<RecordingLog::Line> lines = RecordingLog::Lines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_THAT(LineText(lines[0]), HasSubstr("no_such_module"));
    EXPECT_THAT(LineText(lines[1]), HasSubstr("scripted_broken"));
    EXPECT_EQ(TakeBrokersLines(), BindingLines("gamma"));
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("alpha")), kNothingToCall);
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("gamma")), 1);
}

TEST_F(RealVendors, AreScannedAndAskedAndStopped) {
    Write({{"alpha", "scripted_all"}, {"beta", "scripted_all_b"}});
    const std::string record = Follow(
        "result StopDeviceScan 5\n"
        "result ConnectFailNotifyEvent 6\n"
        "[scripted_all]\n"
        "device \"A1B2C3\" \"alpha\" \"one\" \"two\" \"three\" 1 2\n");
    ScanInterface& scan = ScanInterface::GetInstance();
    TakeLines();
    ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, 9}), 0);
    EXPECT_TRUE(RecordingLog::WaitUntil(
        [](const std::vector<RecordingLog::Line>& lines) { return lines.size() >= 5; }, 30000));
    for (int patience = 0; Process::LinesOf(record).size() < 3 && patience < 3000; ++patience) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_THAT(TakeBrokersLines(),
                testing::UnorderedElementsAre(
                    LineIs(1, "Clear info", "ScanInterfaceListener::ClearDeviceCallbackInfo"),
                    LineIs(1, "Set info9", "ScanInterfaceListener::SetDeviceCallbackInfo"),
                    LineIs(1, "call Func OK", kStart), LineIs(1, "call Func OK", kStart),
                    LineIs(1, "callback", "ScanInterfaceListener::CallBackFunc")));
    ASSERT_EQ(Application::Reports().size(), 1u);
    EXPECT_THAT(Process::LinesOf(record), testing::Contains("scripted_all callback 0"));
    EXPECT_EQ(scan.ConnectFailNotifyEvent(DeviceOf("beta")), 6);
    EXPECT_EQ(scan.StopDeviceScan(), 5);
    EXPECT_THAT(
        TakeLines(),
        ElementsAre(LineIs(4, "call Func Fail6", "ScanInterface::ConnectFailNotifyEvent"),
                    LineIs(1, "Clear info", "ScanInterfaceListener::ClearDeviceCallbackInfo"),
                    LineIs(4, "call Func fail, err:5", "ScanInterface::StopDeviceScan"),
                    LineIs(4, "call Func fail, err:5", "ScanInterface::StopDeviceScan")));
}

TEST_F(RealVendors, ComeWithALaterInitWhenTheListComesLater) {
    Write({});
    ScanInterface& scan = ScanInterface::GetInstance();
    EXPECT_THAT(TakeBrokersLines(), ElementsAre(LineIs(4, "vendorList is empty. DeleteAllVendor",
                                                       "ScanInterface::GetDeviceFunc")));
    EXPECT_EQ(scan.StopDeviceScan(), kNotInitialised);
    TakeLines();
    Write({{"alpha", "scripted_all"}});
    EXPECT_TRUE(scan.Init());
    EXPECT_EQ(TakeLines(), BindingLines("alpha"));
    EXPECT_EQ(scan.StopDeviceScan(), 0);
    Write({});
    EXPECT_FALSE(scan.Init());
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("alpha")), 1);
    EXPECT_THAT(Application::Reports(), IsEmpty());
}

}  // namespace
