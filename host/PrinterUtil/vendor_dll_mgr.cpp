#include "platform/PrinterUtil/PrinterUtil.h"
#include "platform/PrinterUtil/VendorDllMgr.h"

VendorDllMgr& VendorDllMgr::GetInstance() {
    alignas(VendorDllMgr) static char storage[sizeof(VendorDllMgr)];
    return *reinterpret_cast<VendorDllMgr*>(storage);
}
int VendorDllMgr::GetCurrentSupportList(std::vector<VendorInfo>&) {
    return 0;
}
bool VendorDllMgr::GetDeviceHandle(HINSTANCE&, const std::string&) {
    return false;
}
std::string PrinterUtil::WStringToString(const std::wstring& text) {
    return {text.begin(), text.end()};
}
