// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <sstream>
#include <thread>

#include "DeviceDiscover/printer_sdk.h"
#include "DeviceDiscover/usb.h"
#include "platform/PrinterAdapter/PrinterListProblem.h"
#include "tests/base/ipp/ipp_bytes.h"
#include "tests/host/PrinterAdapter/fake_spooler_linux.h"
#include "tests/support/recording_log.h"

namespace PrinterAdapterTest {

namespace {

using PrinterSdk::PrinterProperty;
using testing::IsEmpty;
using testing::SizeIs;
using Printers = std::vector<PrinterProperty>;
using namespace std::chrono_literals;

constexpr auto kTime = 2s;
// What the machine may add when it is busy.
constexpr auto kSlack = 1500ms;

Printers Installed() {
    Printers printers;
    PrinterSdk::IPrinterAdapter::GetInstance().GetPrinterListProvider()->GetPrinterList(printers);
    return printers;
}

std::map<std::wstring, PrinterProperty> InstalledByName() {
    std::map<std::wstring, PrinterProperty> byName;
    for (const PrinterProperty& printer : Installed()) {
        byName.emplace(printer.name, printer);
    }
    return byName;
}

std::chrono::steady_clock::duration TimeOf(const std::function<void()>& action) {
    const auto before = std::chrono::steady_clock::now();
    action();
    return std::chrono::steady_clock::now() - before;
}

void ExpectOneWarning(const std::wstring& start) {
    const auto lines = RecordingLog::Lines();
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(lines[0].level, LOG_LEVEL_WARNING);
    EXPECT_TRUE(lines[0].text.starts_with(start)) << testing::PrintToString(lines[0].text);
    EXPECT_TRUE(lines[0].text.ends_with(L"(PrinterListProvider::GetPrinterList)"))
        << testing::PrintToString(lines[0].text);
}

void SignalSpooler(int signal) {
    ASSERT_EQ(kill(std::stoi(std::getenv("SPOOLER_PID")), signal), 0);
}

// "name: device URI" of each queue, as another program lists them.
std::vector<std::string> QueuesAsLpstatSeesThem() {
    std::vector<std::string> queues;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen("lpstat -v", "r"), pclose);
    std::string output;
    std::array<char, 4096> part{};
    while (const std::size_t length = std::fread(part.data(), 1, part.size(), pipe.get())) {
        output.append(part.data(), length);
    }
    std::istringstream lines(output);
    const std::string start = "device for ";
    for (std::string line; std::getline(lines, line);) {
        EXPECT_TRUE(line.starts_with(start)) << line;
        queues.push_back(line.substr(start.size()));
    }
    return queues;
}

TEST(InstalledPrinters, AreTheSpoolersQueues) {
    std::vector<std::string> queues;
    for (const PrinterProperty& printer : Installed()) {
        const std::string name(printer.name.begin(), printer.name.end());
        std::string uri(printer.deviceUri.begin(), printer.deviceUri.end());
        if (uri.starts_with("file:")) {
            uri.erase(0, 5);  // as the other program writes it
        }
        queues.push_back(name + ": " + uri);
    }
    EXPECT_THAT(queues, SizeIs(6));
    EXPECT_THAT(queues, testing::UnorderedElementsAreArray(QueuesAsLpstatSeesThem()));
    EXPECT_THAT(RecordingLog::Lines(), IsEmpty());
}

TEST(InstalledPrinters, OnUsbHaveSerialNumberAndModel) {
    auto printers = InstalledByName();
    const PrinterProperty& byUri = printers[L"usb_by_uri"];
    EXPECT_EQ(byUri.connectType, PrinterSdk::kConnectTypeUsb);
    EXPECT_EQ(byUri.serialNumber, L"USB-0001");
    EXPECT_EQ(byUri.modelID, L"USB Laser");
    EXPECT_EQ(byUri.manufacturer, L"Acme");
    const PrinterProperty& byId = printers[L"usb_by_id"];
    EXPECT_EQ(byId.connectType, PrinterSdk::kConnectTypeUsb);
    EXPECT_EQ(byId.serialNumber, L"1D-42");
    EXPECT_EQ(byId.modelID, L"Ink 50%");
    EXPECT_EQ(byId.manufacturer, L"Acme Inc.");
}

TEST(InstalledPrinters, OnTheNetworkHaveWhatTellsThemApart) {
    auto printers = InstalledByName();
    EXPECT_EQ(printers[L"net_same_as_usb"].connectType, PrinterSdk::kConnectTypeWlan);
    EXPECT_EQ(printers[L"net_same_as_usb"].serialNumber, L"USB-0001");
    EXPECT_EQ(printers[L"net_dnssd"].connectType, PrinterSdk::kConnectTypeWlan);
    EXPECT_EQ(printers[L"net_dnssd"].serialNumber, L"01234567-89ab-cdef-0123-456789abcdef");
    EXPECT_EQ(printers[L"net_dnssd"].portName, L"Acme Laser._ipp._tcp.local");
    EXPECT_EQ(printers[L"net_ipp"].connectType, PrinterSdk::kConnectTypeWlan);
    EXPECT_THAT(printers[L"net_ipp"].serialNumber, SizeIs(36));
    EXPECT_EQ(printers[L"net_ipp"].portName, L"192.0.2.10");
}

TEST(InstalledPrinters, OfAnotherKindAreNeitherOnUsbNorOnTheNetwork) {
    EXPECT_EQ(InstalledByName()[L"file_queue"].connectType, 0);
}

TEST(InstalledPrinters, HaveWhatTheSpoolerSaysOfThem) {
    const PrinterProperty printer = InstalledByName()[L"usb_by_id"];
    EXPECT_EQ(printer.description, L"Printer \u00e9 usb_by_id");
    EXPECT_EQ(printer.location, L"Lab");
    EXPECT_EQ(printer.driverName, L"Test Driver");
    EXPECT_EQ(printer.state, L"idle");
    EXPECT_EQ(printer.deviceUri, L"usb://Acme/Ink");
}

TEST(InstalledPrinters, AreAppended) {
    Printers printers(1);
    printers[0].name = L"first";
    PrinterSdk::IPrinterAdapter::GetInstance().GetPrinterListProvider()->GetPrinterList(printers);
    EXPECT_THAT(printers, SizeIs(7));
    EXPECT_EQ(printers[0].name, L"first");
}

TEST(InstalledPrinters, AreNoneWithoutAQueue) {
    ASSERT_EQ(std::system("for queue in $(lpstat -e); do lpadmin -x $queue; done"), 0);
    EXPECT_THAT(Installed(), IsEmpty());
    EXPECT_THAT(RecordingLog::Lines(), IsEmpty());
}

TEST(InstalledPrinters, AreListedFromSeveralThreads) {
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index) {
        threads.emplace_back([] {
            for (int round = 0; round < 10; ++round) {
                EXPECT_THAT(Installed(), SizeIs(6));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(InstalledPrinters, AreKnownToTheFacadeWithWhetherTheyAreOnTheNetwork) {
    std::vector<PrinterDeviceDiscoverSdk::DeviceUsbInfo> devices;
    EXPECT_EQ(
        PrinterDeviceDiscoverSdk::DiscoverUsbInterface::GetInstance().GetDeviceNoConfigNet(devices),
        0);
    ASSERT_THAT(devices, SizeIs(2));
    std::sort(devices.begin(), devices.end(), [](const auto& one, const auto& other) {
        return std::string(one.deviceSN) < other.deviceSN;
    });
    EXPECT_STREQ(devices[0].deviceSN, "1D-42");
    EXPECT_STREQ(devices[0].modelID, "Ink 50%");
    EXPECT_FALSE(devices[0].isNetConfigured);
    EXPECT_STREQ(devices[1].deviceSN, "USB-0001");
    EXPECT_STREQ(devices[1].modelID, "USB Laser");
    EXPECT_TRUE(devices[1].isNetConfigured);
}

TEST(WithoutASpooler, NoPrinterIsInstalled) {
    setenv("CUPS_SERVER", "/nonexistent/spooler", 1);
    EXPECT_THAT(Installed(), IsEmpty());
    ExpectOneWarning(
        L"installed printers: no print spooler can be reached at /nonexistent/spooler(");
    std::array<char, 24> problem{};
    EXPECT_NE(PrinterListProblem(problem.data(), problem.size()), 0);
    EXPECT_STREQ(problem.data(), "no print spooler can be");
    std::thread([] { EXPECT_EQ(PrinterListProblem(nullptr, 0), 0); }).join();
}

TEST(WithoutASpooler, NoPrinterIsInstalledOnANetworkSpoolerEither) {
    setenv("CUPS_SERVER", "127.0.0.1:1", 1);
    EXPECT_THAT(Installed(), IsEmpty());
    ExpectOneWarning(L"installed printers: no print spooler can be reached at 127.0.0.1(");
}

// This host may have a spooler of its own, or none.
TEST(AProgramWithMoreRightsThanItsUser, IsNotLedToASpooler) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    ASSERT_EQ(seteuid(65534), 0);
    EXPECT_THAT(Installed(), testing::Not(SizeIs(6)));
    ASSERT_EQ(seteuid(0), 0);
    ASSERT_THAT(RecordingLog::Lines(), testing::Not(IsEmpty()));
    const std::wstring line = RecordingLog::Lines().front().text;
    EXPECT_TRUE(line.starts_with(
        L"installed printers: the environment variable CUPS_SERVER is ignored: this program has "
        L"more rights than the user who started it"))
        << testing::PrintToString(line);
}

TEST(ASpoolerThatHasDied, HasNoPrinters) {
    EXPECT_THAT(Installed(), SizeIs(6));
    EXPECT_EQ(PrinterListProblem(nullptr, 0), 0);
    SignalSpooler(SIGKILL);
    std::this_thread::sleep_for(100ms);
    EXPECT_THAT(Installed(), IsEmpty());
    ExpectOneWarning(L"installed printers: no print spooler can be reached at ");
}

TEST(ASpoolerThatHangs, IsGivenUpInTimeAndAskedAgain) {
    SignalSpooler(SIGSTOP);
    const auto time = TimeOf([] { EXPECT_THAT(Installed(), IsEmpty()); });
    EXPECT_GE(time, kTime - 100ms);
    EXPECT_LE(time, kTime + kSlack);
    ExpectOneWarning(L"installed printers: ");
    SignalSpooler(SIGCONT);
    EXPECT_THAT(Installed(), SizeIs(6));
}

TEST(ASpoolerThatHangs, HoldsUpNobodyElseForLonger) {
    SignalSpooler(SIGSTOP);
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index) {
        threads.emplace_back([] {
            const auto time = TimeOf([] { EXPECT_THAT(Installed(), IsEmpty()); });
            EXPECT_LE(time, kTime + kSlack);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(RecordingLog::Lines(), SizeIs(4));
}

TEST(ASpoolerThatDrips, IsGivenUpInTime) {
    const FakeSpooler spooler([](int connection, const std::atomic<bool>& isOver) {
        ReadRequest(connection);
        Send(connection,
             "HTTP/1.1 200 OK\r\nContent-Type: application/ipp\r\nContent-Length: 100000\r\n\r\n");
        while (!isOver) {
            Send(connection, "\x01");
            std::this_thread::sleep_for(50ms);
        }
    });
    const auto time = TimeOf([] { EXPECT_THAT(Installed(), IsEmpty()); });
    EXPECT_LE(time, kTime + kSlack);
    EXPECT_THAT(RecordingLog::Lines(), SizeIs(1));
}

// What a spooler answers, and then does not end.
void ExpectNoPrintersSoon(const std::string& start, const std::string& more,
                          const testing::Matcher<std::wstring>& isProblem) {
    const FakeSpooler spooler([&](int connection, const std::atomic<bool>& isOver) {
        ReadRequest(connection);
        Send(connection, start);
        while (!more.empty() && !isOver) {
            Send(connection, more);
        }
    });
    const auto time = TimeOf([] { EXPECT_THAT(Installed(), IsEmpty()); });
    EXPECT_LE(time, kTime + kSlack);
    const auto lines = RecordingLog::Lines();
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_THAT(lines[0].text, isProblem);
}

testing::Matcher<std::wstring> Says(const std::wstring& problem) {
    return testing::HasSubstr(problem);
}

const std::string kOk = "HTTP/1.1 200 OK\r\n\r\n";

TEST(ASpoolerWithoutBounds, MayNestItsAnswer) {
    ExpectNoPrintersSoon(kOk + BaseTest::Head() + BaseTest::Group(4) +
                             BaseTest::Nested(10000, true) + BaseTest::End(),
                         "", Says(L"no valid IPP answer: collections nested deeper than 16"));
}

TEST(ASpoolerWithoutBounds, MayNeverEndItsAnswer) {
    std::string more;
    for (int i = 0; i < 20; ++i) {
        more += BaseTest::Text("", std::string(30000, 'x'));
    }
    const auto isTooLong = Says(L"an answer of more than 16777216 bytes");
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    // So many bytes may take all of the time then.
    const auto isProblem = testing::AnyOf(isTooLong, Says(L"has not answered in time"));
#else
    const auto isProblem = isTooLong;
#endif
    ExpectNoPrintersSoon(kOk + BaseTest::Head() + BaseTest::Group(4) + BaseTest::Text("a", ""),
                         more, isProblem);
}

TEST(ASpoolerWithoutBounds, MayNeverEndItsHead) {
    ExpectNoPrintersSoon("HTTP/1.1 200 OK\r\n", "WWW-Authenticate: Negotiate\r\n",
                         Says(L"an HTTP head without an end"));
}

TEST(ASpoolerWithoutBounds, MaySayWhatIsNoPrinters) {
    using namespace BaseTest;
    const std::string name = Text("printer-name", "one");
    const std::string answer = kOk + Head() + Group(5) + name + Group(4) +
                               Text("printer-info", "") + Group(4) + Text("printer-name", "two") +
                               End();
    const FakeSpooler spooler([&](int connection, const std::atomic<bool>&) {
        ReadRequest(connection);
        Send(connection, answer);
    });
    const Printers printers = Installed();
    ASSERT_THAT(printers, SizeIs(1));
    EXPECT_EQ(printers[0].name, L"two");
}

TEST(ASpoolerThatDrips, KeepsNobodyFromAskingAnother) {
    const FakeSpooler spooler([](int connection, const std::atomic<bool>& isOver) {
        ReadRequest(connection);
        while (!isOver) {
            Send(connection, "X");
            std::this_thread::sleep_for(20ms);
        }
    });
    EXPECT_THAT(Installed(), IsEmpty());
    const FakeSpooler another([](int connection, const std::atomic<bool>&) {
        ReadRequest(connection);
        Send(connection, kOk + BaseTest::Head() + BaseTest::Group(4) +
                             BaseTest::Text("printer-name", "two") + BaseTest::End());
    });
    EXPECT_THAT(Installed(), SizeIs(1));
}

TEST(ASpoolerThatAsksWhoAsks, IsTold) {
    std::vector<std::string> requests;
    const FakeSpooler spooler([&](int connection, const std::atomic<bool>&) {
        requests.push_back(ReadRequest(connection));
        Send(connection, requests.size() == 1
                             ? "HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: PeerCred\r\n\r\n"
                             : kOk + BaseTest::Head() + BaseTest::Group(4) +
                                   BaseTest::Text("printer-name", "two") + BaseTest::End());
    });
    EXPECT_THAT(Installed(), SizeIs(1));
    ASSERT_THAT(requests, SizeIs(2));
    EXPECT_THAT(requests[0], testing::Not(testing::HasSubstr("Authorization")));
    EXPECT_THAT(requests[1], testing::HasSubstr("\r\nAuthorization: PeerCred "));
}

class ASpoolerThatBreaksOff : public testing::TestWithParam<const char*> {};

TEST_P(ASpoolerThatBreaksOff, HasNoPrinters) {
    const FakeSpooler spooler([](int connection, const std::atomic<bool>&) {
        ReadRequest(connection);
        Send(connection, GetParam());
    });
    const auto time = TimeOf([] { EXPECT_THAT(Installed(), IsEmpty()); });
    EXPECT_LE(time, kTime + kSlack);
    ExpectOneWarning(L"installed printers: ");
}

INSTANTIATE_TEST_SUITE_P(
    Answers, ASpoolerThatBreaksOff,
    testing::Values("", "HTTP/1.1 200 OK\r\n", "HTTP/1.1 503 Service Unavailable\r\n\r\n",
                    "HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"x\"\r\n"
                    "Content-Length: 0\r\n\r\n",
                    "HTTP/1.1 200 OK\r\nContent-Type: application/ipp\r\nContent-Length: 500\r\n"
                    "\r\n\x02\x01",
                    "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n",
                    "no spooler at all\r\n\r\n"),
    [](const auto& answer) { return "Answer" + std::to_string(answer.index); });

}  // namespace

}  // namespace PrinterAdapterTest
