// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

namespace PrinterAdapter {

// A print queue's device URI, scheme://host/path?query. User name, password and port are left out.
// Host and path are percent-decoded.
struct DeviceUri {
    std::string scheme;  // in lower case
    std::string host;    // usb: the manufacturer; dnssd: the name of the service
    std::string path;    // without the leading slash
    std::string query;   // not decoded

    // The decoded value of a query parameter; empty when it is missing.
    std::string Parameter(std::string_view name) const;
};

DeviceUri ReadDeviceUri(std::string_view text);

}  // namespace PrinterAdapter
