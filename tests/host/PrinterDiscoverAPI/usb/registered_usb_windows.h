// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "platform/os.h"

// The system's device list, which needs the header above.
#include <setupapi.h>

namespace UsbTest {

// A USB printer that the system has registered and takes for plugged in, as long as the object
// lives.
class RegisteredPrinter {
public:
    // As in L"USB\\VID_1234&PID_ABCD\\0001".
    explicit RegisteredPrinter(const std::wstring& instanceId);
    ~RegisteredPrinter();
    RegisteredPrinter(const RegisteredPrinter&) = delete;
    RegisteredPrinter& operator=(const RegisteredPrinter&) = delete;

    // The path of its device interface.
    const std::wstring& Path() const { return path; }

    // What the port monitor stores with the interface.
    void SetPort(const std::wstring& baseName, DWORD number);

    // Whether it is plugged in, or only remembered.
    void SetPresent(bool isPresent);

private:
    HDEVINFO devices;
    SP_DEVINFO_DATA device{};
    SP_DEVICE_INTERFACE_DATA part{};
    std::wstring path;
};

// A hardware identifier that no other running test has: of this process, and different for each
// `number` from 0 to 3.
std::wstring OwnHardwareId(unsigned number = 0);

}  // namespace UsbTest
