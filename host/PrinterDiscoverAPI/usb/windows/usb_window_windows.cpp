// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/usb/windows/usb_notifications_windows.h"

// Needs windows.h before it.
#include <dbt.h>

#include <future>
#include <mutex>
#include <thread>

namespace PrinterDiscoverAPI {

namespace {

constexpr const wchar_t* kWindowClass = L"DeviceDiscover.UsbPrinters";

HINSTANCE ThisLibrary() {
    HMODULE library = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&ThisLibrary), &library);
    return library;
}

void TakeDeviceChange(UsbEventQueue& queue, WPARAM change, LPARAM what) {
    if (change != DBT_DEVICEARRIVAL && change != DBT_DEVICEREMOVECOMPLETE) {
        return;
    }
    const auto* device = reinterpret_cast<const DEV_BROADCAST_DEVICEINTERFACE_W*>(what);
    if (device == nullptr || device->dbcc_devicetype != DBT_DEVTYP_DEVICEINTERFACE) {
        return;
    }
    const auto kind = change == DBT_DEVICEARRIVAL ? UsbEvent::Kind::added : UsbEvent::Kind::removed;
    PutUsbEvent(queue, kind, device->dbcc_name);
}

LRESULT CALLBACK TakeMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
    switch (message) {
        case WM_CREATE:
            SetWindowLongPtrW(window, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(
                                  reinterpret_cast<const CREATESTRUCTW*>(second)->lpCreateParams));
            return 0;
        case WM_DEVICECHANGE:
            TakeDeviceChange(
                *reinterpret_cast<UsbEventQueue*>(GetWindowLongPtrW(window, GWLP_USERDATA)), first,
                second);
            return TRUE;
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcW(window, message, first, second);
    }
}

// Destroying one window must not unregister the class while another window is created.
std::mutex classMutex;

// A window that receives notifications of USB printers; lives on the thread that creates it.
class Window {
public:
    Window(UsbEventQueue& queue, std::string& problem) {
        const std::lock_guard lock(classMutex);
        WNDCLASSEXW windowClass{};
        windowClass.cbSize = sizeof windowClass;
        windowClass.lpfnWndProc = TakeMessage;
        windowClass.hInstance = ThisLibrary();
        windowClass.lpszClassName = kWindowClass;
        RegisterClassExW(&windowClass);
        window = CreateWindowExW(0, kWindowClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                 ThisLibrary(), &queue);
        if (window == nullptr) {
            problem = SystemProblem("CreateWindowExW", GetLastError());
            return;
        }
        DEV_BROADCAST_DEVICEINTERFACE_W filter{};
        filter.dbcc_size = sizeof filter;
        filter.dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
        filter.dbcc_classguid = kUsbPrinterClass;
        registration = RegisterDeviceNotificationW(window, &filter, DEVICE_NOTIFY_WINDOW_HANDLE);
        if (registration == nullptr) {
            problem = SystemProblem("RegisterDeviceNotificationW", GetLastError());
        }
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() {
        if (registration != nullptr) {
            UnregisterDeviceNotification(registration);
        }
        const std::lock_guard lock(classMutex);
        if (window != nullptr) {
            DestroyWindow(window);
        }
        UnregisterClassW(kWindowClass, ThisLibrary());
    }

    HWND Handle() const { return window; }

    // Processes messages until Close is called on the handle.
    static void Run() {
        MSG message;
        while (GetMessageW(&message, nullptr, 0, 0) > 0) {
            if (message.message == WM_CLOSE) {
                return;
            }
            DispatchMessageW(&message);
        }
    }
    static void Close(HWND handle) { PostMessageW(handle, WM_CLOSE, 0, 0); }

private:
    HWND window = nullptr;
    HDEVNOTIFY registration = nullptr;
};

class WindowNotifications : public UsbNotifications {
public:
    WindowNotifications(UsbEventQueue& queue, std::string& problem)
        : thread([this, &queue, &problem] { Watch(queue, problem); }) {
        made.get_future().wait();
    }
    ~WindowNotifications() override {
        // Without a window the message would go to the calling thread.
        if (handle != nullptr) {
            Window::Close(handle);
        }
        thread.join();
    }

private:
    // Runs on the window's thread. `problem` belongs to the creator, which waits until the window
    // is created.
    void Watch(UsbEventQueue& queue, std::string& problem) {
        Window window(queue, problem);
        const bool isUsable = problem.empty();
        handle = window.Handle();
        made.set_value();
        if (isUsable) {
            Window::Run();
        }
    }

    HWND handle = nullptr;
    std::promise<void> made;
    std::thread thread;
};

}  // namespace

std::unique_ptr<UsbNotifications> NotifyByWindow(UsbEventQueue& queue, std::string& problem) {
    auto notifications = std::make_unique<WindowNotifications>(queue, problem);
    return problem.empty() ? std::move(notifications) : nullptr;
}

}  // namespace PrinterDiscoverAPI
