// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <cstddef>
#include <type_traits>

#include "VendorSdk/entry_points.h"
#include "platform/os_calls.h"

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

// The lists of the three families. `Entry` is the family's table entry; its slots are made from the
// same rows.
template <class Entry>
inline constexpr auto kScanEntryPoints = InSlotOrder(std::array{
    VENDORSDK_SCAN_ENTRY_POINTS(BROKER_ENTRY_POINT)});

template <class Entry>
inline constexpr auto kNetConnEntryPoints = InSlotOrder(std::array{
    VENDORSDK_NETCONN_ENTRY_POINTS(BROKER_ENTRY_POINT)});

// Not looked up in slot order: the Wi-Fi scan comes last.
template <class Entry>
inline constexpr EntryPointList<Entry, 3> kUsbEntryPoints{
    {VENDORSDK_USB_ENTRY_POINTS(BROKER_ENTRY_POINT)}, {0, 2, 1}};

#undef BROKER_ENTRY_POINT

}  // namespace Broker
