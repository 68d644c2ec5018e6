// SPDX-License-Identifier: Apache-2.0

#include "tests/host/PrinterDiscoverAPI/usb/registered_usb_windows.h"

#include <gtest/gtest.h>
#include <initguid.h>
// After initguid.h, which makes them define what they name.
#include <devguid.h>
#include <usbprint.h>

#include <array>
#include <cwchar>
#include <vector>

namespace UsbTest {

namespace {

// Where the system keeps what is known of a device interface.
std::wstring KeyOf(std::wstring path) {
    path.replace(0, 4, L"##?#");
    return L"System\\CurrentControlSet\\Control\\DeviceClasses\\"
           L"{28d78fad-5a12-11d1-ae5b-0000f803a8c2}\\" +
           path + L"\\#";
}

void SetNumber(const std::wstring& key, const wchar_t* name, DWORD number) {
    EXPECT_EQ(
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, REG_DWORD, &number, sizeof number),
        ERROR_SUCCESS);
}

}  // namespace

RegisteredPrinter::RegisteredPrinter(const std::wstring& instanceId)
    : devices(SetupDiCreateDeviceInfoList(&GUID_DEVCLASS_USB, nullptr)) {
    device.cbSize = sizeof device;
    part.cbSize = sizeof part;
    EXPECT_TRUE(SetupDiCreateDeviceInfoW(devices, instanceId.c_str(), &GUID_DEVCLASS_USB, nullptr,
                                         nullptr, 0, &device))
        << GetLastError();
    EXPECT_TRUE(SetupDiRegisterDeviceInfo(devices, &device, 0, nullptr, nullptr, nullptr));
    EXPECT_TRUE(SetupDiCreateDeviceInterfaceW(devices, &device, &GUID_DEVINTERFACE_USBPRINT,
                                              nullptr, 0, &part));
    std::vector<std::byte> room(4096);
    auto* detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(room.data());
    detail->cbSize = sizeof *detail;
    EXPECT_TRUE(SetupDiGetDeviceInterfaceDetailW(
        devices, &part, detail, static_cast<DWORD>(room.size()), nullptr, nullptr));
    path = detail->DevicePath;
    SetPresent(true);
}

RegisteredPrinter::~RegisteredPrinter() {
    EXPECT_TRUE(SetupDiRemoveDeviceInterface(devices, &part));
    EXPECT_TRUE(SetupDiRemoveDevice(devices, &device));
    SetupDiDestroyDeviceInfoList(devices);
}

void RegisteredPrinter::SetPort(const std::wstring& baseName, DWORD number) {
    const std::wstring key = KeyOf(path) + L"\\Device Parameters";
    EXPECT_EQ(
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"Base Name", REG_SZ, baseName.c_str(),
                        static_cast<DWORD>((baseName.size() + 1) * sizeof(wchar_t))),
        ERROR_SUCCESS);
    SetNumber(key, L"Port Number", number);
}

void RegisteredPrinter::SetPresent(bool isPresent) {
    SetNumber(KeyOf(path) + L"\\Control", L"Linked", isPresent ? 1 : 0);
}

std::wstring OwnHardwareId(unsigned number) {
    std::array<wchar_t, 32> text{};
    const unsigned own = static_cast<unsigned>(GetCurrentProcessId()) * 4 + number;
    std::swprintf(text.data(), text.size(), L"VID_%04X&PID_%04X", 0xF000 + (own >> 16),
                  own & 0xFFFF);
    return text.data();
}

}  // namespace UsbTest
