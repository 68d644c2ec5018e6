// SPDX-License-Identifier: Apache-2.0

#pragma once

// The interfaces of the application's printer SDK, with their default bodies. The order of each
// virtual table is fixed. The library itself calls only GetPrinterListProvider, the last operation
// of IPrinterAdapter. The other pure operations only keep their number and their positions in the
// virtual table: this header chose their names and arguments, and the printer SDK and its users
// agree on what they do and return.

#include <cstdint>
#include <string>
#include <vector>

#include "DeviceDiscover/export.h"
#include "platform/PrinterAdapter/PrinterListProvider.h"

// The library PrinterAdapter provides IPrinterAdapter::GetInstance, which this library calls.
// PrinterAdapter builds the class with its own bodies, so that neither library has to link to the
// other.
#if defined(PRINTERADAPTER_BUILDING)
#define PRINTERADAPTER_API PLATFORM_EXPORT
#define PRINTERADAPTER_DEFAULT = default
#else
#define PRINTERADAPTER_API DEVICEDISCOVER_API
#define PRINTERADAPTER_DEFAULT
#endif

namespace PrinterSdk {

// Defined by the printer SDK; only declared here.
struct PrintTaskInfo;
struct DeviceState;
enum SettingItem : std::int32_t;

// Printing through one printer.
class DEVICEDISCOVER_API IPrintCap {
public:
    IPrintCap();
    IPrintCap(const IPrintCap& other);
    IPrintCap& operator=(const IPrintCap& other);
    virtual ~IPrintCap();

    virtual int PrintDocument(const wchar_t* path, int copies) = 0;
    virtual int PrintImage(const wchar_t* path, int copies) = 0;
    virtual int PauseTask(int task) = 0;
    virtual int ResumeTask(int task) = 0;
    virtual int CancelTask(int task) = 0;
    virtual int GetTaskCount() = 0;
};

// Scanning through one printer.
class DEVICEDISCOVER_API IScanCap {
public:
    IScanCap();
    IScanCap(const IScanCap& other);
    IScanCap& operator=(const IScanCap& other);
    virtual ~IScanCap();

    virtual int StartScan(const wchar_t* path) = 0;
    virtual int CancelScan() = 0;
    virtual int SetResolution(int dotsPerInch) = 0;
    virtual int SetColorMode(int mode) = 0;
    virtual int SetSource(int source) = 0;
    virtual int GetState() = 0;
};

// Copying on one printer.
class DEVICEDISCOVER_API ICopyCap {
public:
    ICopyCap();
    ICopyCap(const ICopyCap& other);
    ICopyCap& operator=(const ICopyCap& other);
    virtual ~ICopyCap();

    virtual int StartCopy(int copies) = 0;
    virtual int CancelCopy() = 0;
    virtual int GetState() = 0;
};

// Access to the application's printers. The library calls only GetPrinterListProvider.
class PRINTERADAPTER_API IPrinterAdapter {
public:
    // The application's adapter, from the library PrinterAdapter. It lives until the process ends.
    static IPrinterAdapter& GetInstance();

    IPrinterAdapter() PRINTERADAPTER_DEFAULT;
    IPrinterAdapter(const IPrinterAdapter& other) PRINTERADAPTER_DEFAULT;
    IPrinterAdapter& operator=(const IPrinterAdapter& other) PRINTERADAPTER_DEFAULT;
    virtual ~IPrinterAdapter() PRINTERADAPTER_DEFAULT;

    virtual int Open() = 0;
    virtual int Close() = 0;
    virtual IPrintCap* GetPrintCap(const wchar_t* printer) = 0;
    virtual IScanCap* GetScanCap(const wchar_t* printer) = 0;
    virtual ICopyCap* GetCopyCap(const wchar_t* printer) = 0;

    // Returns the list of printers, which the adapter owns. Null counts as an empty list. May be
    // called from any thread, from several at once.
    virtual PrinterListProvider* GetPrinterListProvider() = 0;
};

// Receives events of printers and their tasks. Each operation does nothing and returns 0 by
// default; a listener overrides those that it needs.
class DEVICEDISCOVER_API IPrinterUiListener {
public:
    IPrinterUiListener();
    IPrinterUiListener(const IPrinterUiListener& other);
    IPrinterUiListener& operator=(const IPrinterUiListener& other);
    virtual ~IPrinterUiListener();

    virtual int OnCopyDoneCb(int result);
    virtual int OnDocPrintDoneCb(const wchar_t* path, int task, int result);
    virtual int OnErrorCb(int error);
    virtual int OnImgPrintDoneCb(const wchar_t* path, int task, int result);
    virtual int OnPrintTaskListRefresh(std::vector<PrintTaskInfo>& tasks);
    virtual int OnPrinterDeleted(PrinterProperty& printer, int result);
    virtual int OnPrinterGetInfoCb(SettingItem item, int result, std::string& value);
    virtual int OnPrinterListChangedRefresh(PrinterProperty& printer, bool added);
    virtual int OnPrinterSetCtrlCb(SettingItem item, int result);
    virtual int OnPrinterStateNotify(const PrinterProperty& printer, const DeviceState& state);
    virtual int OnScanFinishCb(const wchar_t* path, int pages, int result);
    virtual int OnScanProcessCb(int percent);
};

}  // namespace PrinterSdk

// Receives arrivals and removals of devices. Never deleted through this class.
class DEVICEDISCOVER_API IDeviceChangeListener {
public:
    IDeviceChangeListener();
    IDeviceChangeListener(const IDeviceChangeListener& other);
    IDeviceChangeListener& operator=(const IDeviceChangeListener& other);

    virtual int OnDeviceChange(const wchar_t* deviceId, int state) = 0;

protected:
    ~IDeviceChangeListener() = default;
};
