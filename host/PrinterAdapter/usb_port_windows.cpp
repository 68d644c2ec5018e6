// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterAdapter/usb_port_windows.h"

#include "base/text/utf8.h"
#include "base/usb_serial_number.h"
#include "platform/os.h"

// They need windows.h before them.
#include <cfgmgr32.h>
#include <initguid.h>
#include <setupapi.h>
#include <usbprint.h>
#include <winioctl.h>

#include <algorithm>
#include <array>
#include <cwchar>
#include <memory>
#include <string_view>

#include "host/PrinterAdapter/instance_id.h"

namespace PrinterAdapter {

namespace {

struct DestroyDeviceList {
    using pointer = HDEVINFO;
    void operator()(HDEVINFO list) const { SetupDiDestroyDeviceInfoList(list); }
};
using DeviceList = std::unique_ptr<HDEVINFO, DestroyDeviceList>;

struct CloseKey {
    using pointer = HKEY;
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using Key = std::unique_ptr<HKEY, CloseKey>;

struct CloseFile {
    using pointer = HANDLE;
    void operator()(HANDLE file) const { CloseHandle(file); }
};
using File = std::unique_ptr<HANDLE, CloseFile>;

// The name of the port that the system's port monitor has created for the device interface.
std::wstring PortNameOf(HDEVINFO devices, SP_DEVICE_INTERFACE_DATA& part) {
    const HKEY opened = SetupDiOpenDeviceInterfaceRegKey(devices, &part, 0, KEY_READ);
    if (opened == INVALID_HANDLE_VALUE) {
        return {};
    }
    const Key key(opened);
    std::array<wchar_t, 32> base{};
    DWORD size = sizeof base - sizeof(wchar_t);
    DWORD number = 0;
    DWORD numberSize = sizeof number;
    if (RegQueryValueExW(key.get(), L"Base Name", nullptr, nullptr,
                         reinterpret_cast<BYTE*>(base.data()), &size) != ERROR_SUCCESS ||
        RegQueryValueExW(key.get(), L"Port Number", nullptr, nullptr,
                         reinterpret_cast<BYTE*>(&number), &numberSize) != ERROR_SUCCESS) {
        return {};
    }
    std::array<wchar_t, 64> name{};
    std::swprintf(name.data(), name.size(), L"%ls%03lu", base.data(), number);
    return name.data();
}

std::wstring InstanceIdOf(DEVINST device) {
    std::array<wchar_t, MAX_DEVICE_ID_LEN + 1> id{};
    const CONFIGRET result =
        CM_Get_Device_IDW(device, id.data(), static_cast<ULONG>(id.size() - 1), 0);
    return result == CR_SUCCESS ? id.data() : std::wstring();
}

// A function of a composite device has a generated instance id; the device itself has the serial
// number.
std::wstring SerialNumberOf(HDEVINFO devices, SP_DEVINFO_DATA& device) {
    std::array<wchar_t, MAX_DEVICE_ID_LEN + 1> id{};
    if (SetupDiGetDeviceInstanceIdW(devices, &device, id.data(), static_cast<DWORD>(id.size()),
                                    nullptr) == 0) {
        return {};
    }
    std::wstring serialNumber = SerialNumberOfInstance(id.data());
    DEVINST parent = 0;
    if (!serialNumber.empty() || std::wcsstr(id.data(), L"&MI_") == nullptr ||
        CM_Get_Parent(&parent, device.DevInst, 0) != CR_SUCCESS) {
        return serialNumber;
    }
    return SerialNumberOfInstance(InstanceIdOf(parent));
}

// The IEEE 1284 device identifier; empty if it cannot be read.
std::string DeviceIdTextOf(const wchar_t* path) {
    const HANDLE opened =
        CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) {
        return {};
    }
    const File file(opened);
    std::array<char, 2048> answer{};
    DWORD length = 0;
    if (DeviceIoControl(file.get(), IOCTL_USBPRINT_GET_1284_ID, nullptr, 0, answer.data(),
                        static_cast<DWORD>(answer.size()), &length, nullptr) == 0) {
        return {};
    }
    const std::size_t received = std::min<std::size_t>(length, answer.size());
    return std::string(Base::DeviceIdText({answer.data(), received}));
}

UsbPort PortOf(HDEVINFO devices, SP_DEVICE_INTERFACE_DATA& part) {
    UsbPort port;
    port.name = PortNameOf(devices, part);
    DWORD size = 0;
    SetupDiGetDeviceInterfaceDetailW(devices, &part, nullptr, 0, &size, nullptr);
    std::vector<std::byte> room(
        std::max<std::size_t>(size, sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W)));
    auto* detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(room.data());
    detail->cbSize = sizeof *detail;
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    if (SetupDiGetDeviceInterfaceDetailW(devices, &part, detail, static_cast<DWORD>(room.size()),
                                         nullptr, &device) == 0) {
        return port;
    }
    port.id = Base::ReadDeviceId(DeviceIdTextOf(detail->DevicePath));
    port.id.serialNumber =
        Base::UsbSerialNumber(Base::ToUtf8(SerialNumberOf(devices, device)), port.id.serialNumber);
    return port;
}

}  // namespace

std::vector<UsbPort> UsbPorts() {
    std::vector<UsbPort> ports;
    const HDEVINFO listed = SetupDiGetClassDevsW(&GUID_DEVINTERFACE_USBPRINT, nullptr, nullptr,
                                                 DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    if (listed == INVALID_HANDLE_VALUE) {
        return ports;
    }
    const DeviceList devices(listed);
    SP_DEVICE_INTERFACE_DATA part{};
    part.cbSize = sizeof part;
    for (DWORD index = 0;
         SetupDiEnumDeviceInterfaces(devices.get(), nullptr, &GUID_DEVINTERFACE_USBPRINT, index,
                                     &part) != 0;
         ++index) {
        ports.push_back(PortOf(devices.get(), part));
    }
    return ports;
}

}  // namespace PrinterAdapter
