#pragma once

#include <string>
#include <string_view>

namespace PrinterAdapter {

// A print queue's device URI, scheme://host/path?query. A name and pass phrase before the host, and
// a port behind it, are left out. Host and path are decoded.
struct DeviceUri {
    std::string scheme;  // in small letters
    std::string host;    // of a USB printer the manufacturer, of a DNS-SD one the service's name
    std::string path;    // without the leading slash
    std::string query;   // as it stands

    // The decoded value of a parameter of the query; empty when it is not there.
    std::string Parameter(std::string_view name) const;
};

DeviceUri ReadDeviceUri(std::string_view text);

}  // namespace PrinterAdapter
