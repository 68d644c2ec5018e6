// SPDX-License-Identifier: Apache-2.0

#include "DeviceDiscover/printer_sdk.h"

namespace PrinterSdk {

IPrintCap::IPrintCap() = default;
IPrintCap::IPrintCap(const IPrintCap&) = default;
IPrintCap& IPrintCap::operator=(const IPrintCap&) = default;
IPrintCap::~IPrintCap() = default;

IScanCap::IScanCap() = default;
IScanCap::IScanCap(const IScanCap&) = default;
IScanCap& IScanCap::operator=(const IScanCap&) = default;
IScanCap::~IScanCap() = default;

ICopyCap::ICopyCap() = default;
ICopyCap::ICopyCap(const ICopyCap&) = default;
ICopyCap& ICopyCap::operator=(const ICopyCap&) = default;
ICopyCap::~ICopyCap() = default;

IPrinterAdapter::IPrinterAdapter() = default;
IPrinterAdapter::IPrinterAdapter(const IPrinterAdapter&) = default;
IPrinterAdapter& IPrinterAdapter::operator=(const IPrinterAdapter&) = default;
IPrinterAdapter::~IPrinterAdapter() = default;

IPrinterUiListener::IPrinterUiListener() = default;
IPrinterUiListener::IPrinterUiListener(const IPrinterUiListener&) = default;
IPrinterUiListener& IPrinterUiListener::operator=(const IPrinterUiListener&) = default;
IPrinterUiListener::~IPrinterUiListener() = default;

int IPrinterUiListener::OnCopyDoneCb(int) {
    return 0;
}
int IPrinterUiListener::OnDocPrintDoneCb(const wchar_t*, int, int) {
    return 0;
}
int IPrinterUiListener::OnErrorCb(int) {
    return 0;
}
int IPrinterUiListener::OnImgPrintDoneCb(const wchar_t*, int, int) {
    return 0;
}
int IPrinterUiListener::OnPrintTaskListRefresh(std::vector<PrintTaskInfo>&) {
    return 0;
}
int IPrinterUiListener::OnPrinterDeleted(PrinterProperty&, int) {
    return 0;
}
int IPrinterUiListener::OnPrinterGetInfoCb(SettingItem, int, std::string&) {
    return 0;
}
int IPrinterUiListener::OnPrinterListChangedRefresh(PrinterProperty&, bool) {
    return 0;
}
int IPrinterUiListener::OnPrinterSetCtrlCb(SettingItem, int) {
    return 0;
}
int IPrinterUiListener::OnPrinterStateNotify(const PrinterProperty&, const DeviceState&) {
    return 0;
}
int IPrinterUiListener::OnScanFinishCb(const wchar_t*, int, int) {
    return 0;
}
int IPrinterUiListener::OnScanProcessCb(int) {
    return 0;
}

}  // namespace PrinterSdk

IDeviceChangeListener::IDeviceChangeListener() = default;
IDeviceChangeListener::IDeviceChangeListener(const IDeviceChangeListener&) = default;
IDeviceChangeListener& IDeviceChangeListener::operator=(const IDeviceChangeListener&) = default;
