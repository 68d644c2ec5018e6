// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/connect_state.h"

#include <chrono>
#include <optional>

#include "modules/driverless/common/results.h"
#include "modules/driverless/ipp/ipp_query.h"

namespace Driverless {

namespace {

// How long the first of two places is asked alone; a connection counts only within this time.
constexpr std::chrono::milliseconds kPatienceForFirstPlace{1000};

int StateFrom(const Printer& printer, const IppAnswer& answer) {
    switch (answer.kind) {
        case IppAnswer::Kind::NoAnswer:
            return kNoAnswer;
        case IppAnswer::Kind::NoPrinter:
        case IppAnswer::Kind::Denied:
            return kNoPrinter;
        case IppAnswer::Kind::Granted:
            break;
    }
    if (!IsSamePrinter(printer, answer.attributes)) {
        return kOtherPrinter;
    }
    return answer.attributes.acceptsJobs && !answer.attributes.stopped ? kReady : kNotReady;
}

int StateBy(const Printer& printer, Clock::time_point deadline) {
    if (SpeaksIpp(printer.kind)) {
        return StateFrom(printer, IppAsking(printer, deadline).Answer());
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return AcceptsConnection(printer, left) ? kReady : kNoAnswer;
}

// What refuses to tell is the printer where that was announced, and may be anything elsewhere.
bool IsFinal(int state, const Printer& printer) {
    const bool wasAnnounced = !printer.id.domain.empty();
    return state == kReady || state == kNotReady || (state == kNoPrinter && wasAnnounced);
}

}  // namespace

bool IsSamePrinter(const Printer& printer, const PrinterAttributes& attributes) {
    const std::string uuid = PlainUuid(attributes.uuid);
    if (!printer.uuid.empty() && !uuid.empty()) {
        return printer.uuid == uuid;
    }
    const std::string serialNumber = SerialNumber(attributes);
    return serialNumber.empty() || printer.serialNumber.empty() ||
           printer.serialNumber == serialNumber || printer.serialNumber == uuid ||
           printer.serialNumber.find('@') != std::string::npos;
}

bool HasAddress(const Printer& printer) {
    return printer.kind != ServiceKind::None && printer.port != 0 && !printer.address.empty();
}

int ConnectState(const Printer& printer) {
    return HasAddress(printer) ? StateBy(printer, Clock::now() + kAnswerPatience) : kUnknownPrinter;
}

int ConnectState(const Printer& first, const Printer& second) {
    const bool isOnePlace = first.address == second.address && first.port == second.port;
    if (isOnePlace || !HasAddress(first) || !HasAddress(second)) {
        return ConnectState(HasAddress(first) ? first : second);
    }
    const auto now = Clock::now();
    const auto preferred = now + kPatienceForFirstPlace;
    const auto deadline = now + kAnswerPatience;
    std::optional<IppAsking> asking;
    int state = kNoAnswer;
    if (!SpeaksIpp(first.kind)) {
        state = StateBy(first, preferred);
    } else if (asking.emplace(first, deadline).IsOver(preferred)) {
        state = StateFrom(first, asking->Answer());
    }
    if (IsFinal(state, first)) {
        return state;
    }
    const int other = StateBy(second, deadline);
    // The first place has until the deadline, and counts when it answers meanwhile.
    if (asking) {
        state = StateFrom(first, asking->Answer());
    }
    const bool counts = !IsFinal(state, first) && (other == kReady || other == kNotReady);
    return counts ? other : state;
}

}  // namespace Driverless
