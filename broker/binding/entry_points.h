// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <type_traits>

#include "VendorSdk/entry_points.h"
#include "platform/os_calls.h"

// The entry points of each family, in the order of the slots. X gets the name of the slot, the
// exported name, and the text that is logged when the export is missing.

#define BROKER_SCAN_ENTRY_POINTS(X)                                                           \
    X(StartDeviceScan, StartDeviceScan, "startDeviceScan is nullptr, err:")                   \
    X(StopDeviceScan, StopDeviceScan, "stopDeviceScan is nullptr, err:")                      \
    X(GetDeviceConnectState, GetDeviceConnectState, "getDeviceConnectState is nullptr, err:") \
    X(BeforeConnectEventNotify, BeforeConnectEventNotify,                                     \
      "beforeConnectEventNotify is nullptr, err:")                                            \
    X(ConnectSuccessNotifyEvent, ConnectSuccessNotifyEvent,                                   \
      "connectSuccessNotifyEvent is nullptr, err:")                                           \
    X(ConnectFailNotifyEvent, ConnectFailNotifyEvent, "connectFailNotifyEvent is nullptr, err:")

#define BROKER_NETCONN_ENTRY_POINTS(X)                                                     \
    X(StartAPWifiScan, StartAPWifiScan, "startApWifiScan is nullptr, err:")                \
    X(StopAPWifiScan, StopAPWifiScan, "stopApWifiScan is nullptr, err:")                   \
    X(PrinterAPNetConfigEvent, PrinterAPNetConfigEvent,                                    \
      "printerApNetConfigEvent is nullptr, err:")                                          \
    X(IsLocalAreaNetworkOK, IsLocalAreaNetworkOK, "isLocalAreaNetworkOK is nullptr, err:") \
    X(GetDeviceInfoByNet, GetDeviceInfoByNet, "getDeviceInfoByNet is nullptr, err:")       \
    X(IsConnectCurrentWifiAP, IsConnectCurrentWifiAP, "isConnectCurrentWifiAp is nullptr, err:")

#define BROKER_USB_ENTRY_POINTS(X)                                                     \
    X(pGetDeviceInfoByUsb, GetDeviceInfoByUsb, "pGetDeviceInfoByUsb is nullptr, err:") \
    X(pGetUSBWifiScan, USBWifiScan, "pGetUSBWifiScan is nullptr, err:")                \
    X(pPrinterUSBNetConfigEvent, PrinterUSBNetConfigEvent,                             \
      "pPrinterUSBNetConfigEvent is nullptr, err:")

// Each list names the entry points that the vendors' header names, in the same order.
#define BROKER_NAME_OF_ROW(slot, name, message) #name " "
#define BROKER_NAME(name) #name " "
static_assert(std::string_view(BROKER_SCAN_ENTRY_POINTS(BROKER_NAME_OF_ROW)) ==
              VENDORSDK_SCAN_ENTRY_POINTS(BROKER_NAME));
static_assert(std::string_view(BROKER_NETCONN_ENTRY_POINTS(BROKER_NAME_OF_ROW)) ==
              VENDORSDK_NETCONN_ENTRY_POINTS(BROKER_NAME));
static_assert(std::string_view(BROKER_USB_ENTRY_POINTS(BROKER_NAME_OF_ROW)) ==
              VENDORSDK_USB_ENTRY_POINTS(BROKER_NAME));
#undef BROKER_NAME
#undef BROKER_NAME_OF_ROW

namespace Broker {

// One entry point of a family, as data: its exported name, the text logged when the module lacks
// it, and its slot in the family's table entry.
template <class Entry>
struct EntryPoint {
    const char* exportName;
    const char* missingMessage;
    void (*store)(Entry& entry, FARPROC symbol);
    const void* place;  // identifies the slot
};

// Distinguishes slots at compile time; under the sanitizers functions cannot be compared there.
template <class Entry>
inline constexpr Entry kPlaces{};

template <class Entry, auto Slot>
inline constexpr const void* kPlace = &(kPlaces<Entry>.*Slot);

template <class Entry, auto Slot>
void Store(Entry& entry, FARPROC symbol) {
    auto& slot = entry.*Slot;
    using Function = std::remove_reference_t<decltype(slot)>;
    // Cast through void(*)(), to and from which every function pointer may be cast.
    slot = reinterpret_cast<Function>(reinterpret_cast<void (*)()>(symbol));
}

// A family's entry points in slot order, and the order in which they are looked up.
template <class Entry, std::size_t Count>
struct EntryPointList {
    std::array<EntryPoint<Entry>, Count> entryPoints;
    std::array<std::size_t, Count> lookupOrder;
};

// The list of a family whose entry points are looked up in slot order.
template <class Entry, std::size_t Count>
constexpr EntryPointList<Entry, Count> InSlotOrder(
    const std::array<EntryPoint<Entry>, Count>& entryPoints) {
    EntryPointList<Entry, Count> list{entryPoints, {}};
    for (std::size_t slot = 0; slot < Count; ++slot) {
        list.lookupOrder[slot] = slot;
    }
    return list;
}

// The exported name for a family's slot. A slot that is not in the family's list does not compile.
template <auto Slot, class Entry, std::size_t Count>
consteval const char* ExportName(const EntryPointList<Entry, Count>& list) {
    std::size_t at = 0;
    while (list.entryPoints[at].place != kPlace<Entry, Slot>) {
        ++at;
    }
    return list.entryPoints[at].exportName;
}

#define BROKER_ENTRY_POINT(slot, name, message)                                        \
    ::Broker::EntryPoint<Entry>{#name, message, &::Broker::Store<Entry, &Entry::slot>, \
                                ::Broker::kPlace<Entry, &Entry::slot>},

// The lists of the three families. `Entry` is the family's table entry, with a member for each
// slot.
template <class Entry>
inline constexpr auto kScanEntryPoints = InSlotOrder(std::array{
    BROKER_SCAN_ENTRY_POINTS(BROKER_ENTRY_POINT)});

template <class Entry>
inline constexpr auto kNetConnEntryPoints = InSlotOrder(std::array{
    BROKER_NETCONN_ENTRY_POINTS(BROKER_ENTRY_POINT)});

// Not looked up in slot order: the Wi-Fi scan comes last.
template <class Entry>
inline constexpr EntryPointList<Entry, 3> kUsbEntryPoints{
    {BROKER_USB_ENTRY_POINTS(BROKER_ENTRY_POINT)}, {0, 2, 1}};

#undef BROKER_ENTRY_POINT

}  // namespace Broker
