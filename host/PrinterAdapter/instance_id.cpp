// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterAdapter/instance_id.h"

namespace PrinterAdapter {

std::wstring SerialNumberOfInstance(std::wstring_view instanceId) {
    const std::size_t last = instanceId.rfind(L'\\');
    if (last == std::wstring_view::npos || !instanceId.starts_with(L"USB\\")) {
        return {};
    }
    const std::wstring_view instance = instanceId.substr(last + 1);
    return instance.find(L'&') == std::wstring_view::npos ? std::wstring(instance) : std::wstring();
}

}  // namespace PrinterAdapter
