// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "tests/support/application.h"
#include "tests/support/broker_test.h"

// A test of the access-point family: the dispatcher with vendors of the test's choice.
class NetConnTest : public BrokerTest {
protected:
    using Dispatcher = PrinterDeviceDiscoverSdk::NetConnInterface;

    // Binds these vendors; the lines of it are gone.
    static Dispatcher& With(std::vector<VendorInfo> vendors) {
        ScriptedVendors::Support(std::move(vendors));
        Dispatcher& dispatcher = Dispatcher::GetInstance();
        PrinterDeviceDiscoverSdk::NetConnInterfaceListener::GetInstance();
        TakeLines();
        return dispatcher;
    }

    static VendorInfo Alpha() { return ScriptedVendors::Vendor("alpha", "scripted_all"); }
    static VendorInfo Beta() { return ScriptedVendors::Vendor("beta", "scripted_all_b"); }
    static VendorInfo AlphaWithout(const std::string& entryPoint) {
        return ScriptedVendors::Vendor("alpha", "scripted_without_" + entryPoint);
    }

    // Whether the host is joined to the access point of that module's vendor.
    static void Answer(const std::string& moduleName, int isConnected) {
        ScriptedModule(moduleName)
            .Script("result IsConnectCurrentWifiAP " + std::to_string(isConnected));
    }

    // Lines of the family's parts.
    static std::string Said(int level, const std::string& message, const std::string& operation) {
        return LineIs(level, message, "NetConnInterface::" + operation);
    }
    static std::string ChooserSaid(int level, const std::string& message) {
        return Said(level, message, "GetCurrentNetConnectWifiAPInterface");
    }
    static std::string ListenerSaid(const std::string& message, const std::string& operation) {
        return LineIs(1, message, "NetConnInterfaceListener::" + operation);
    }
    static std::string SetLine(const std::string& param) {
        return ListenerSaid("Set info" + param, "SetDeviceCallbackInfo");
    }
    static std::string ClearLine() { return ListenerSaid("Clear info", "ClearDeviceCallbackInfo"); }
    static std::string FacadeSaid(const std::string& message, const std::string& operation) {
        return LineIs(1, message, "DiscoverNetConnInterface::" + operation);
    }
};
