#include "connect_state.h"

#include "ipp_query.h"
#include "results.h"

namespace Driverless {

namespace {

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
    if (!HasAddress(printer)) {
        return kUnknownPrinter;
    }
    if (!SpeaksIpp(printer.kind)) {
        return AcceptsConnection(printer, kAnswerPatience) ? kReady : kNoAnswer;
    }
    return StateFrom(printer, AskInTime(printer, kAnswerPatience));
}

}  // namespace Driverless
