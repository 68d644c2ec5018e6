// The third main job, with everything but the printers real: the application, the broker, the
// module for standard printers and the system's own device libraries.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/simulated_usb.h"

namespace UsbTest {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr auto kPatience = seconds(30);
// A printer is asked for this long after the system tells of it.
constexpr auto kWait = milliseconds(1000);

// A run of the application that is read line by line.
class Application {
public:
    explicit Application(std::vector<std::string> arguments) {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        output = ends[0];
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        arguments.insert(arguments.begin(), DEVICEDISCOVER_PROGRAM);
        std::vector<char*> words;
        for (std::string& argument : arguments) {
            words.push_back(argument.data());
        }
        words.push_back(nullptr);
        EXPECT_EQ(
            posix_spawn(&process, DEVICEDISCOVER_PROGRAM, &actions, nullptr, words.data(), environ),
            0);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
    }

    ~Application() {
        if (process > 0) {
            kill(process, SIGKILL);
            waitpid(process, nullptr, 0);
        }
        close(output);
    }

    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    // The next line; nothing when none came in time.
    std::optional<nlohmann::json> Read(milliseconds patience) {
        const auto end = Clock::now() + patience;
        for (;;) {
            if (const std::size_t stop = text.find('\n'); stop != std::string::npos) {
                const std::string line = text.substr(0, stop);
                text.erase(0, stop + 1);
                return nlohmann::json::parse(line);
            }
            const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
            pollfd file{output, POLLIN, 0};
            std::array<char, 4096> part{};
            if (left.count() <= 0 || poll(&file, 1, static_cast<int>(left.count())) <= 0) {
                return std::nullopt;
            }
            const ssize_t count = read(output, part.data(), part.size());
            if (count <= 0) {
                return std::nullopt;
            }
            text.append(part.data(), static_cast<std::size_t>(count));
        }
    }

    void Interrupt() const { kill(process, SIGINT); }

    int Status() {
        int status = 0;
        waitpid(process, &status, 0);
        process = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t process = 0;
    int output = -1;
    std::string text;
};

class UsbJourney : public testing::Test {
protected:
    UsbJourney() {
        std::string pattern = std::filesystem::temp_directory_path() / "journey-XXXXXX";
        folder = mkdtemp(pattern.data());
        setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
        setenv("XDG_STATE_HOME", folder.c_str(), 1);
        setenv("DRIVERLESS_LOG", "off", 1);
        unsetenv("DEVICEDISCOVER_VENDORS");
    }
    ~UsbJourney() override { std::filesystem::remove_all(folder); }

    // Plugs the printer in until the watch, which may have just begun, has seen it come.
    std::optional<nlohmann::json> PlugUntilSeen(Application& watch,
                                                const SimulatedDevice& printer) {
        const auto end = Clock::now() + kPatience;
        while (Clock::now() < end) {
            const auto plugged = Clock::now();
            usb.Plug(printer);
            if (const auto arrival = watch.Read(kWait + seconds(4))) {
                EXPECT_GE(Clock::now() - plugged, kWait);
                return arrival;
            }
            usb.Unplug(printer);
        }
        return std::nullopt;
    }

    std::string folder;
    SimulatedUsb usb;
};

SimulatedDevice At(const std::string& place, const std::string& serialNumber) {
    SimulatedDevice printer;
    printer.place = place;
    printer.deviceId = "MFG:Acme;MDL:USB Laser;SN:" + serialNumber + ";";
    return printer;
}

void ExpectPrinter(const std::optional<nlohmann::json>& object, const std::string& place,
                   const std::string& serialNumber) {
    ASSERT_TRUE(object.has_value());
    EXPECT_EQ(object->value("serialNumber", ""), serialNumber);
    EXPECT_EQ(object->value("makeAndModel", ""), "Acme USB Laser");
    EXPECT_EQ(object->value("place", ""), place);
    EXPECT_EQ(object->value("vendor", ""), "driverless");
}

TEST_F(UsbJourney, APrinterThatIsPluggedInIsThereASecondLater) {
    Application watch({"usb", "watch", "--json"});
    const SimulatedDevice first = At("1-1", "A");
    ExpectPrinter(PlugUntilSeen(watch, first), "usb:1-1", "A");

    SimulatedDevice disk = At("1-3", "DISK");
    disk.interfaceClasses = {8};
    usb.Plug(disk);
    usb.Unplug(first);
    EXPECT_EQ(watch.Read(kWait * 2), std::nullopt);

    const auto plugged = Clock::now();
    usb.Plug(first);
    ExpectPrinter(watch.Read(kPatience), "usb:1-1", "A");
    EXPECT_GE(Clock::now() - plugged, kWait);

    // An arrival is of a model, and reports each printer of it.
    usb.Plug(At("1-2", "B"));
    ExpectPrinter(watch.Read(kPatience), "usb:1-1", "A");
    ExpectPrinter(watch.Read(kPatience), "usb:1-2", "B");
    EXPECT_EQ(watch.Read(kWait * 2), std::nullopt);

    watch.Interrupt();
    EXPECT_EQ(watch.Status(), 0);
}

TEST_F(UsbJourney, WhatIsPluggedInIsListedByAnyModel) {
    usb.Plug(At("1-1", "A"));
    SimulatedDevice other = At("2-4", "B");
    other.vendorId = 0x04f9;
    other.productId = 0xbeef;
    usb.Plug(other);
    SimulatedDevice disk = At("1-3", "DISK");
    disk.interfaceClasses = {8};
    usb.Plug(disk);
    Application ports({"usb", "ports", "--json"});
    std::map<std::string, nlohmann::json> printers;
    while (const auto printer = ports.Read(kPatience)) {
        printers.emplace(printer->value("serialNumber", ""), *printer);
    }
    EXPECT_EQ(ports.Status(), 0);
    ASSERT_EQ(printers.size(), 2U);
    ExpectPrinter(printers["A"], "usb:1-1", "A");
    ExpectPrinter(printers["B"], "usb:2-4", "B");
}

}  // namespace

}  // namespace UsbTest
