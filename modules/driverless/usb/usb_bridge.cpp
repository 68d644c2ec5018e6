// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/usb/usb_bridge.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <future>
#include <iterator>
#include <map>

#include "base/text/ascii_case.h"
#include "base/text/record_field.h"
#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/usb/usb_printer.h"

namespace Driverless {

namespace {

// The limit of bridges; no host has more printers on USB.
constexpr std::size_t kMaxBridges = 64;

constexpr const char* kRangeVariable = "DRIVERLESS_USB_BRIDGE_PORTS";

std::optional<std::uint16_t> PortFrom(std::string_view text) {
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole && port != 0 ? std::optional(port) : std::nullopt;
}

PortRange WantedRange() {
    return PortRangeFrom(ReadSetting(kRangeVariable));
}

Printer PrinterAt(std::uint16_t port, const std::optional<PrinterAttributes>& attributes) {
    return Describe({"USB", {}, ServiceKind::Ipp, -1}, {"localhost", "127.0.0.1", port, {}},
                    attributes);
}

std::vector<BridgedPrinter> AskAll(const std::vector<std::uint16_t>& ports,
                                   std::chrono::milliseconds patience) {
    std::vector<std::future<IppAnswer>> answers;
    answers.reserve(ports.size());
    for (const std::uint16_t port : ports) {
        answers.push_back(std::async(std::launch::async, [port, patience] {
            return AskInTime(PrinterAt(port, {}), patience,
                             {IppQuestion::Kind::AttributesWithWifi, {}});
        }));
    }
    std::vector<BridgedPrinter> printers;
    for (std::size_t i = 0; i < ports.size(); ++i) {
        const IppAnswer answer = answers[i].get();
        if (answer.kind == IppAnswer::Kind::Granted) {
            printers.push_back({PrinterAt(ports[i], answer.attributes), answer.attributes});
        } else {
            ReportDetail("no printer answers at this host's port " + std::to_string(ports[i]) +
                         ": " + answer.problem);
        }
    }
    return printers;
}

// Whether the printer itself reports its serial number over IPP.
bool SaysSerialNumber(const BridgedPrinter& bridged) {
    return !SerialNumber(bridged.attributes).empty();
}

bool IsSame(const BridgedPrinter& bridged, const std::string& serialNumber) {
    const std::string uuid = PlainUuid(serialNumber);
    return bridged.printer.serialNumber == serialNumber ||
           (!uuid.empty() && bridged.printer.uuid == uuid);
}

// A printer's make and model over USB may differ from that over IPP, unless IPP also returns the
// device id.
bool IsSameModel(const BridgedPrinter& bridged, const VendorSdk::DeviceInfo& record) {
    PrinterAttributes deviceIdOnly;
    deviceIdOnly.deviceId = bridged.attributes.deviceId;
    const std::string wanted = Base::LowerCase(Base::FieldView(record.extra1));
    const Printer byDeviceId = Describe({}, {}, deviceIdOnly);
    return Base::LowerCase(bridged.printer.makeAndModel) == wanted ||
           Base::LowerCase(byDeviceId.makeAndModel) == wanted;
}

template <class Predicate>
std::vector<BridgedPrinter> Those(const std::vector<BridgedPrinter>& printers,
                                  Predicate predicate) {
    std::vector<BridgedPrinter> those;
    std::copy_if(printers.begin(), printers.end(), std::back_inserter(those), predicate);
    return those;
}

BridgeSearch Nothing(int result, const std::string& problem) {
    ReportProblem(problem);
    return {result, std::nullopt};
}

}  // namespace

PortRange PortRangeFrom(const std::string& text) {
    const std::size_t dash = std::min(text.find('-'), text.size());
    const std::string_view all = text;
    const auto first = PortFrom(all.substr(0, dash));
    const auto last = dash == text.size() ? first : PortFrom(all.substr(dash + 1));
    return first && last && *first <= *last ? PortRange{*first, *last} : PortRange{};
}

std::vector<std::uint16_t> BridgePorts(const std::vector<ListeningPort>& listening, PortRange range,
                                       unsigned user) {
    std::map<std::uint16_t, bool> trusted;
    for (const ListeningPort& one : listening) {
        bool& isTrusted = trusted.try_emplace(one.port, true).first->second;
        isTrusted = isTrusted && (one.owner == 0 || one.owner == user);
    }
    std::vector<std::uint16_t> ports;
    for (const auto& [port, isTrusted] : trusted) {
        if (isTrusted && port >= range.first && port <= range.last && ports.size() < kMaxBridges) {
            ports.push_back(port);
        }
    }
    return ports;
}

BridgeSearch ChooseBridged(const std::vector<BridgedPrinter>& printers,
                           const VendorSdk::DeviceInfo& record, const OtherSerialNumber& other) {
    const std::string serialNumber = Base::FieldText(record.deviceSN);
    std::vector<BridgedPrinter> likely =
        Those(printers, [&](const BridgedPrinter& one) { return IsSame(one, serialNumber); });
    const std::vector<BridgedPrinter> ofModel =
        Those(likely, [&](const BridgedPrinter& one) { return IsSameModel(one, record); });
    if (!ofModel.empty()) {
        likely = ofModel;
    }
    bool isShared = false;
    if (likely.empty() && !other.text.empty()) {
        likely = Those(printers, [&](const BridgedPrinter& one) {
            return IsSame(one, other.text) && IsSameModel(one, record);
        });
        isShared = other.isShared && !likely.empty();
    }
    if (likely.empty()) {
        // If one side has no serial number, the model decides, provided there is only one printer
        // of it.
        likely = Those(printers, [&](const BridgedPrinter& one) {
            return !(HasSerialNumber(record) && SaysSerialNumber(one)) && IsSameModel(one, record);
        });
    }
    const std::string name = Base::FieldText(record.extra1) + " (" + serialNumber + ")";
    if (likely.empty()) {
        return Nothing(kNotReached,
                       "no bridge for printers on USB has " + name +
                           ": see whether it speaks IPP over USB, and plug it in again");
    }
    if (likely.size() > 1 || isShared) {
        return Nothing(kSeveralAlike, "several printers on USB are like " + name +
                                          ", and nothing tells them apart: unplug the others");
    }
    return {kOk, likely.front()};
}

bool IsStillThere(const Printer& bridged, const PrinterAttributes& answer) {
    return PrinterAt(bridged.port, answer).serialNumber == bridged.serialNumber;
}

BridgeSearch FindBridged(const VendorSdk::DeviceInfo& record, Clock::time_point deadline) {
    const auto ports = BridgePorts(LocalListeningPorts(), WantedRange(), geteuid());
    if (ports.empty()) {
        return Nothing(
            kNoBridge,
            "no bridge for printers on USB runs on this host: install and start ipp-usb, "
            "or name the ports of another in DRIVERLESS_USB_BRIDGE_PORTS");
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return ChooseBridged(AskAll(ports, std::max(left, std::chrono::milliseconds(0))), record,
                         KnownUsbNames().Of(record));
}

}  // namespace Driverless
