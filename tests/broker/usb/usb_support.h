// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>

#include "tests/support/application.h"
#include "tests/support/broker_test.h"

// A test of the USB family: the dispatcher with vendors of the test's choice.
class UsbTest : public BrokerTest {
protected:
    using Dispatcher = PrinterDeviceDiscoverSdk::UsbConnInterface;

    static constexpr char kId[] = "VID_1234&PID_ABCD";
    static constexpr char kOtherId[] = "VID_5678&PID_00EF";

    // Binds these vendors; the lines of it are gone.
    static Dispatcher& With(std::vector<VendorInfo> vendors) {
        ScriptedVendors::Support(std::move(vendors));
        Dispatcher& dispatcher = Dispatcher::GetInstance();
        TakeLines();
        return dispatcher;
    }

    static VendorInfo Vendor(const std::string& productId, const std::string& moduleName,
                             const std::string& usbIdList) {
        return {productId, {}, {}, usbIdList, moduleName, {}};
    }
    static VendorInfo Alpha() { return Vendor("alpha", "scripted_all", kId); }
    static VendorInfo Beta() { return Vendor("beta", "scripted_all_b", kOtherId); }
    static VendorInfo AlphaWithout(const std::string& entryPoint) {
        return Vendor("alpha", "scripted_without_" + entryPoint, kId);
    }

    static std::wstring Wide(const std::string& text) { return {text.begin(), text.end()}; }

    // The result of the enumeration; what it found is dropped.
    static int Enumerate(const std::string& id) {
        std::vector<PrinterDeviceDiscoverSdk::DeviceInfo> devices;
        return Dispatcher::GetInstance().GetDeviceInfoByUsb(devices, Wide(id));
    }

    // Lines of the family's parts.
    static std::string Said(int level, const std::string& message, const std::string& operation) {
        return LineIs(level, message, "UsbConnInterface::" + operation);
    }
    static std::string MonitorSaid(const std::string& message, const std::string& operation) {
        return LineIs(1, message, "UsbInterfaceMonitor::" + operation);
    }
    static std::string SetLine(const std::string& param) {
        return MonitorSaid("Set info" + param, "SetDeviceStateCallbackInfo");
    }
    static std::string ClearLine() {
        return MonitorSaid("Clear info", "ClearDeviceStateCallbackInfo");
    }
    static std::string FacadeSaid(const std::string& message, const std::string& operation,
                                  int level = 1) {
        return LineIs(level, message, "DiscoverUsbInterface::" + operation);
    }
    static Lines BindingLines(const std::string& productId) {
        return {Said(3, "productId" + productId, "GetDeviceFunc")};
    }

    // What `calls` said had been called when each line that begins with `start` was logged, while
    // `work` ran.
    static std::vector<Lines> CallsAtTheLine(const std::string& start,
                                             const std::function<Lines()>& calls,
                                             const std::function<void()>& work) {
        const std::wstring wideStart = Wide(start);
        std::vector<Lines> called;
        RecordingLog::OnLine([&](const RecordingLog::Line& line) {
            if (line.text.starts_with(wideStart)) {
                called.push_back(calls());
            }
        });
        work();
        RecordingLog::OnLine({});
        return called;
    }
    static Lines CallsOfAlpha() { return ScriptedModule("scripted_all").CallNames(); }

    // The lines of an enumeration up to the vendor's call.
    static Lines EnumerationBegins(const std::string& id, const std::string& ids) {
        return {EnumerationSaid(3, "STEP1"),          EnumerationSaid(3, "STEP2"),
                EnumerationSaid(3, "deviceID:" + id), EnumerationSaid(1, "usbId:" + id),
                EnumerationSaid(3, "STEP3"),          EnumerationSaid(1, ids),
                EnumerationSaid(3, "STEP4")};
    }
    static std::string EnumerationSaid(int level, const std::string& message) {
        return Said(level, message, "GetDeviceInfoByUsb");
    }
};
