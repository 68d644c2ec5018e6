// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterAdapter/print_queue.h"

#include <string_view>

#include "base/device_id.h"
#include "base/text/utf8.h"
#include "base/usb_serial_number.h"
#include "host/PrinterAdapter/device_uri.h"
#include "host/PrinterAdapter/port_kind.h"

namespace PrinterAdapter {

namespace {

std::string FirstOf(const std::string& one, const std::string& other) {
    return one.empty() ? other : one;
}

std::string WithoutUrn(const std::string& uuid) {
    constexpr std::string_view kUrn = "urn:uuid:";
    return uuid.starts_with(kUrn) ? uuid.substr(kUrn.size()) : uuid;
}

// A USB printer that speaks IPP is reached through a service of this host. The queue shows this by
// the service's address or name.
bool IsBridged(const DeviceUri& uri) {
    const bool isHere =
        uri.host == "localhost" || uri.host.starts_with("127.") || uri.host == "::1";
    const bool isQueue = uri.path.starts_with("printers/") || uri.path.starts_with("classes/");
    return uri.scheme.starts_with("ipp") ? isHere && !isQueue
                                         : uri.host.find(" (USB)._") != std::string::npos;
}

}  // namespace

PrinterSdk::PrinterProperty PrinterOf(const PrintQueue& queue) {
    const DeviceUri uri = ReadDeviceUri(queue.deviceUri);
    Base::DeviceId id = Base::ReadDeviceId(queue.deviceId);
    std::int32_t connectType = ConnectTypeOfScheme(uri.scheme);
    if (connectType == PrinterSdk::kConnectTypeUsb) {
        // The spooler got it from the device.
        id.serialNumber = Base::UsbSerialNumber(uri.Parameter("serial"), id.serialNumber);
        id.manufacturer = FirstOf(id.manufacturer, uri.host);
        id.model = FirstOf(id.model, uri.path);
    } else if (connectType == PrinterSdk::kConnectTypeWlan) {
        const std::string uuid = FirstOf(uri.Parameter("uuid"), queue.uuid);
        id.serialNumber = FirstOf(id.serialNumber, WithoutUrn(uuid));
        connectType = IsBridged(uri) ? PrinterSdk::kConnectTypeUsb : connectType;
    }
    PrinterSdk::PrinterProperty printer;
    printer.name = Base::FromUtf8(queue.name);
    printer.description = Base::FromUtf8(queue.description);
    printer.deviceUri = Base::FromUtf8(queue.deviceUri);
    printer.portName =
        Base::FromUtf8(connectType == PrinterSdk::kConnectTypeWlan ? uri.host : uri.scheme);
    printer.serialNumber = Base::FromUtf8(id.serialNumber);
    printer.modelID = Base::FromUtf8(id.model);
    printer.manufacturer = Base::FromUtf8(id.manufacturer);
    printer.location = Base::FromUtf8(queue.location);
    printer.driverName = Base::FromUtf8(queue.driverName);
    printer.connectType = connectType;
    printer.state = Base::FromUtf8(queue.state);
    return printer;
}

}  // namespace PrinterAdapter
