#include <cups/cups.h>

#include <array>
#include <memory>
#include <string_view>

#include "host/PrinterAdapter/print_queue.h"
#include "host/PrinterAdapter/spooler.h"

namespace PrinterAdapter {

namespace {

struct CloseConnection {
    void operator()(http_t* connection) const { httpClose(connection); }
};
using Connection = std::unique_ptr<http_t, CloseConnection>;

struct DeleteMessage {
    void operator()(ipp_t* message) const { ippDelete(message); }
};
using Message = std::unique_ptr<ipp_t, DeleteMessage>;

// An attribute of the spooler's answer, and where it belongs.
struct TextField {
    std::string_view attribute;
    std::string PrintQueue::*field;
};
constexpr std::array kTextFields{
    TextField{"printer-name", &PrintQueue::name},
    TextField{"printer-info", &PrintQueue::description},
    TextField{"printer-location", &PrintQueue::location},
    TextField{"printer-make-and-model", &PrintQueue::driverName},
    TextField{"device-uri", &PrintQueue::deviceUri},
    TextField{"printer-device-id", &PrintQueue::deviceId},
    TextField{"printer-uuid", &PrintQueue::uuid},
};
constexpr std::string_view kState = "printer-state";

// Who lists printers is not asked for a pass phrase.
const char* NoPassPhrase(const char*, http_t*, const char*, const char*, void*) {
    return nullptr;
}

int GiveUp(http_t*, void*) {
    return 0;
}

Message Request() {
    Message request(ippNewRequest(IPP_OP_CUPS_GET_PRINTERS));
    std::array<const char*, kTextFields.size() + 1> names{};
    for (std::size_t index = 0; index < kTextFields.size(); ++index) {
        names[index] = kTextFields[index].attribute.data();
    }
    names.back() = kState.data();
    ippAddStrings(request.get(), IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes",
                  static_cast<int>(names.size()), nullptr, names.data());
    return request;
}

void TakeAttribute(PrintQueue& queue, ipp_attribute_t* attribute) {
    const std::string_view name = ippGetName(attribute);
    if (name == kState) {
        queue.state = ippEnumString(kState.data(), ippGetInteger(attribute, 0));
        return;
    }
    for (const TextField& text : kTextFields) {
        const char* const value =
            name == text.attribute ? ippGetString(attribute, 0, nullptr) : nullptr;
        if (value != nullptr) {
            queue.*text.field = value;
        }
    }
}

// Each printer's attributes are one group; what has no name stands between groups.
std::vector<PrinterSdk::PrinterProperty> PrintersOf(ipp_t* answer) {
    std::vector<PrinterSdk::PrinterProperty> printers;
    PrintQueue queue;
    const auto finish = [&printers, &queue] {
        if (!queue.name.empty()) {
            printers.push_back(PrinterOf(queue));
        }
        queue = {};
    };
    for (ipp_attribute_t* attribute = ippFirstAttribute(answer); attribute != nullptr;
         attribute = ippNextAttribute(answer)) {
        if (ippGetName(attribute) == nullptr) {
            finish();
        } else if (ippGetGroupTag(attribute) == IPP_TAG_PRINTER) {
            TakeAttribute(queue, attribute);
        }
    }
    finish();
    return printers;
}

std::string Where() {
    return std::string(" at ") + cupsServer();
}

}  // namespace

SpoolerAnswer AskSpooler() {
    cupsSetPasswordCB2(NoPassPhrase, nullptr);
    const Connection connection(httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC,
                                             cupsEncryption(), 1,
                                             static_cast<int>(kSpoolerTime.count()), nullptr));
    if (!connection) {
        // The library's reason is the same, that the host is down, for whatever is wrong.
        return {{}, "no print spooler can be reached" + Where()};
    }
    httpSetTimeout(connection.get(), std::chrono::duration<double>(kSpoolerTime).count(), GiveUp,
                   nullptr);
    const Message answer(cupsDoRequest(connection.get(), Request().release(), "/"));
    const ipp_status_t status = cupsLastError();
    if (answer && status == IPP_STATUS_ERROR_NOT_FOUND) {
        return {};  // no printer is installed
    }
    if (!answer || status >= IPP_STATUS_ERROR_BAD_REQUEST) {
        const char* const reason = cupsLastErrorString();
        return {{},
                "no answer from the print spooler" + Where() + ": " +
                    (reason == nullptr ? ippErrorString(status) : reason)};
    }
    return {PrintersOf(answer.get()), {}};
}

}  // namespace PrinterAdapter
