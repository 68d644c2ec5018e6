#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace PrinterSdk {

// How a printer is attached: values of PrinterProperty::connectType. Others mean something else.
inline constexpr std::int32_t kConnectTypeUsb = 1;
inline constexpr std::int32_t kConnectTypeWlan = 2;

// One printer that the adapter knows. It crosses a library border inside a vector: the order of its
// members is fixed. The library reads the serial number, the model identifier and the connect type.
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

// Lists the printers that the adapter knows, of the library PrinterAdapter. The order of the
// virtual table is fixed: the destructor, then the list.
class PrinterListProvider {
public:
    virtual ~PrinterListProvider() = default;

    // Appends every printer that the adapter knows to `printers`.
    virtual void GetPrinterList(std::vector<PrinterProperty>& printers) = 0;
};

}  // namespace PrinterSdk
