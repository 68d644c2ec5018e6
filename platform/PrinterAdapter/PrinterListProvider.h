// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace PrinterSdk {

// How a printer is attached: values of PrinterProperty::connectType. Any other value: in another
// way.
inline constexpr std::int32_t kConnectTypeUsb = 1;
inline constexpr std::int32_t kConnectTypeWlan = 2;

// One printer that the adapter knows. Passed between libraries inside a vector: the order of the
// members is fixed. DeviceDiscover reads serialNumber, modelID and connectType.
struct PrinterProperty {
    std::wstring name;
    std::wstring description;
    std::wstring deviceUri;
    std::wstring portName;
    std::wstring serialNumber;
    std::wstring modelID;
    std::wstring manufacturer;
    std::wstring location;
    std::wstring driverName;
    std::int32_t connectType = 0;
    std::wstring state;
};
static_assert(std::is_standard_layout_v<PrinterProperty>);
static_assert(offsetof(PrinterProperty, name) == 0 * sizeof(std::wstring));
static_assert(offsetof(PrinterProperty, description) == 1 * sizeof(std::wstring));
static_assert(offsetof(PrinterProperty, deviceUri) == 2 * sizeof(std::wstring));
static_assert(offsetof(PrinterProperty, portName) == 3 * sizeof(std::wstring));
static_assert(offsetof(PrinterProperty, serialNumber) == 4 * sizeof(std::wstring));
static_assert(offsetof(PrinterProperty, modelID) == 5 * sizeof(std::wstring));
static_assert(offsetof(PrinterProperty, manufacturer) == 6 * sizeof(std::wstring));
static_assert(offsetof(PrinterProperty, location) == 7 * sizeof(std::wstring));
static_assert(offsetof(PrinterProperty, driverName) == 8 * sizeof(std::wstring));
static_assert(offsetof(PrinterProperty, connectType) == 9 * sizeof(std::wstring));
static_assert(offsetof(PrinterProperty, state) == 9 * sizeof(std::wstring) + alignof(std::wstring));
static_assert(sizeof(PrinterProperty) == 10 * sizeof(std::wstring) + alignof(std::wstring));

// Lists the printers that the adapter of the library PrinterAdapter knows. The order of the virtual
// table is fixed: the destructor, then GetPrinterList.
class PrinterListProvider {
public:
    virtual ~PrinterListProvider() = default;

    // Appends every printer that the adapter knows to `printers`. May be called from any thread,
    // from several at once.
    virtual void GetPrinterList(std::vector<PrinterProperty>& printers) = 0;
};

}  // namespace PrinterSdk
