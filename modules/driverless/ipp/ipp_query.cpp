// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/ipp/ipp_query.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "base/ipp/byte_stream_linux.h"
#include "base/ipp/ipp_exchange_linux.h"
#include "base/ipp/ipp_request.h"
#include "modules/driverless/ipp/ipp_status.h"

namespace Driverless {

namespace {

using Base::IppRequest;
using std::chrono::milliseconds;

constexpr milliseconds kPatienceAtExit{200};

// The requested attributes take 2 KiB. The rest is room for printers that send all their
// attributes, with long lists of media.
constexpr Base::IppLimits kLimits{
    .bytes = std::size_t{256} * 1024, .attributes = 2048, .values = 16384};

constexpr std::string_view kWifiName = "printer-wifi-ssid";
constexpr std::string_view kWifiPassword = "printer-wifi-password";
constexpr std::int32_t kPrinterStopped = 5;

// Counts the running uses of TLS. Never destroyed: queries run until the process is gone.
struct TlsUse {
    std::mutex mutex;
    std::condition_variable changed;
    int users = 0;
    bool over = false;
};

TlsUse& Tls() {
    static TlsUse& use = *new TlsUse;
    return use;
}

class TlsUser {
public:
    TlsUser() {
        const std::lock_guard lock(Tls().mutex);
        admitted = !Tls().over;
        Tls().users += admitted ? 1 : 0;
    }
    ~TlsUser() {
        const std::lock_guard lock(Tls().mutex);
        Tls().users -= admitted ? 1 : 0;
        Tls().changed.notify_all();
    }
    bool IsAdmitted() const { return admitted; }

    TlsUser(const TlsUser&) = delete;
    TlsUser& operator=(const TlsUser&) = delete;

private:
    bool admitted = false;
};

// Accepts only numeric addresses: a name service could take any time.
std::optional<sockaddr_in> NumericAddress(const Printer& printer) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(printer.port);
    if (printer.port == 0 || inet_pton(AF_INET, printer.address.c_str(), &address.sin_addr) != 1) {
        return std::nullopt;
    }
    return address;
}

bool ConnectTo(Base::ByteStream& stream, const sockaddr_in& address) {
    return stream.Connect(reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

using Names = std::vector<std::string_view>;

Names WantedAttributes(bool withWifi) {
    Names names{
        "printer-make-and-model", "printer-device-id", "printer-serial-number",
        "printer-uuid",           "printer-state",     "printer-is-accepting-jobs",
        "printer-name",
    };
    if (withWifi) {
        names.insert(names.end(), {"printer-wifi-state", kWifiName, "printer-uri-supported"});
    }
    return names;
}

void AddSettings(IppRequest& request, const WifiSettings& settings) {
    request.BeginPrinter();
    request.AddName(kWifiName, settings.name);
    request.AddOctets(kWifiPassword, settings.passPhrase.View());
}

Base::IppTarget TargetOf(const Printer& printer) {
    return {printer.host, printer.port, printer.resource, {}};
}

Base::IppOperation OperationOf(const IppQuestion& question) {
    return question.kind == IppQuestion::Kind::Set ? Base::IppOperation::SetPrinterAttributes
                                                   : Base::IppOperation::GetPrinterAttributes;
}

void Fill(IppRequest& request, const Printer& printer, const IppQuestion& question) {
    const bool tls = printer.kind == ServiceKind::Ipps;
    request.AddUri("printer-uri", Base::IppUri(tls ? "ipps" : "ipp", TargetOf(printer)));
    if (question.kind == IppQuestion::Kind::Set) {
        AddSettings(request, question.settings);
        return;
    }
    request.AddKeywords("requested-attributes",
                        WantedAttributes(question.kind == IppQuestion::Kind::AttributesWithWifi));
}

bool HasTlsUri(const Base::IppGroup& group) {
    const auto uris = group.Texts("printer-uri-supported");
    return std::any_of(uris.begin(), uris.end(),
                       [](const std::string& uri) { return uri.starts_with("ipps:"); });
}

// Reads the printer group only: in other groups an attribute has another meaning.
PrinterAttributes AttributesOf(const Base::IppMessage& answer) {
    PrinterAttributes attributes;
    const auto group = answer.Group(Base::kIppPrinterGroup);
    if (!group) {
        return attributes;
    }
    attributes.makeAndModel = group->Text("printer-make-and-model");
    attributes.deviceId = group->Text("printer-device-id");
    attributes.serialNumber = group->Text("printer-serial-number");
    attributes.uuid = group->Text("printer-uuid");
    attributes.acceptsJobs = group->Boolean("printer-is-accepting-jobs").value_or(true);
    attributes.stopped = group->Integer("printer-state") == kPrinterStopped;
    if (const auto wifiState = group->Integer("printer-wifi-state")) {
        attributes.wifiState = static_cast<WifiState>(*wifiState);
    }
    attributes.wifiName = group->Text(kWifiName);
    attributes.speaksTls = HasTlsUri(*group);
    return attributes;
}

// The printer's reason for its refusal, without the secret, which it may quote; else the name of
// its status.
std::string ReasonOf(const Base::IppMessage& answer, const Base::Secret& secret) {
    const auto group = answer.Group(Base::kIppOperationGroup);
    const std::string_view message = group ? group->TextView("status-message") : std::string_view();
    return message.empty() ? IppStatusName(answer.Status()) : secret.MaskedIn(message);
}

// The kind for an HTTP server that sent no IPP answer.
IppAnswer::Kind KindOfHttp(int status) {
    constexpr std::array kDenied{401, 403, 426};
    if (std::find(kDenied.begin(), kDenied.end(), status) != kDenied.end()) {
        return IppAnswer::Kind::Denied;
    }
    return status >= 200 ? IppAnswer::Kind::NoPrinter : IppAnswer::Kind::NoAnswer;
}

}  // namespace

class IppQuery::State {
public:
    State(Printer asked, Clock::time_point answerDeadline, IppQuestion asking)
        : printer(std::move(asked)), question(std::move(asking)), stream(answerDeadline) {}

    IppAnswer Run();
    void Abort() { stream.Cut(); }
    bool IsConnected() const { return connected; }
    bool IsSent() const { return wholeSent; }

private:
    std::optional<Base::IppReply> Exchange(IppRequest::Version version);
    IppAnswer AnswerFrom(const Base::IppReply& reply) const;
    bool IsGranted(std::uint16_t status) const;

    const Printer printer;
    const IppQuestion question;
    Base::ByteStream stream;
    std::atomic<bool> connected{false};
    std::atomic<bool> wholeSent{false};
};

IppAnswer IppQuery::State::Run() {
    std::optional<TlsUser> tls;
    if (stream.IsOver() || (printer.kind == ServiceKind::Ipps && !tls.emplace().IsAdmitted())) {
        return {};
    }
    auto reply = Exchange(IppRequest::Version::Usual);
    if (reply && reply->message && reply->message->Status() == IppStatus::kVersionNotSupported) {
        reply = Exchange(IppRequest::Version::Old);
    }
    IppAnswer answer =
        reply ? AnswerFrom(*reply) : IppAnswer{IppAnswer::Kind::NoAnswer, {}, stream.Problem()};
    answer.connected = connected;
    answer.sent = wholeSent;
    answer.refused = !reply && stream.IsRefused();
    return answer;
}

// Sends one request over a new connection and returns its answer; nothing without a connection.
std::optional<Base::IppReply> IppQuery::State::Exchange(IppRequest::Version version) {
    const auto address = NumericAddress(printer);
    if (!address || !ConnectTo(stream, *address)) {
        return std::nullopt;
    }
    connected = true;
    if (printer.kind == ServiceKind::Ipps && !stream.StartTls(printer.host)) {
        return std::nullopt;
    }
    IppRequest request(version, OperationOf(question));
    Fill(request, printer, question);
    return Base::ExchangeIpp(stream, TargetOf(printer), request.Finish(), kLimits, &wholeSent);
}

IppAnswer IppQuery::State::AnswerFrom(const Base::IppReply& reply) const {
    if (!reply.message) {
        return {stream.IsOver() ? IppAnswer::Kind::NoAnswer : KindOfHttp(reply.httpStatus),
                {},
                reply.problem};
    }
    const std::uint16_t status = reply.message->Status();
    if (!IsGranted(status)) {
        return {IppStatus::IsDenied(status) ? IppAnswer::Kind::Denied : IppAnswer::Kind::NoPrinter,
                {},
                ReasonOf(*reply.message, question.settings.passPhrase)};
    }
    return {IppAnswer::Kind::Granted, AttributesOf(*reply.message), {}};
}

// A printer that ignores an attribute to be set also reports success, with a remark.
bool IppQuery::State::IsGranted(std::uint16_t status) const {
    return status <=
           (question.kind == IppQuestion::Kind::Set ? IppStatus::kOk : IppStatus::kLastOk);
}

IppQuery::IppQuery(Printer asked, Clock::time_point answerDeadline, IppQuestion question)
    : state(std::make_unique<State>(std::move(asked), answerDeadline, std::move(question))) {}

IppQuery::~IppQuery() = default;

IppAnswer IppQuery::Run() {
    return state->Run();
}

void IppQuery::Abort() {
    state->Abort();
}

bool IppQuery::IsConnected() const {
    return state->IsConnected();
}

bool IppQuery::IsSent() const {
    return state->IsSent();
}

IppAsking::IppAsking(const Printer& asked, Clock::time_point answerDeadline, IppQuestion question)
    : deadline(answerDeadline),
      query(std::make_shared<IppQuery>(asked, deadline, std::move(question))) {
    std::packaged_task<IppAnswer()> run([own = query] { return own->Run(); });
    answer = run.get_future();
    std::thread(std::move(run)).detach();
}

IppAsking::~IppAsking() {
    query->Abort();
}

bool IppAsking::IsOver(Clock::time_point by) const {
    return answer.wait_until(by) == std::future_status::ready;
}

IppAnswer IppAsking::Answer() const {
    if (IsOver(deadline)) {
        return answer.get();
    }
    query->Abort();
    IppAnswer none;
    none.connected = query->IsConnected();
    none.sent = query->IsSent();
    return none;
}

IppAnswer AskInTime(const Printer& printer, milliseconds patience, IppQuestion question) {
    return IppAsking(printer, Clock::now() + patience, std::move(question)).Answer();
}

bool AcceptsConnection(const Printer& printer, milliseconds patience) {
    const auto address = NumericAddress(printer);
    Base::ByteStream stream(Clock::now() + patience);
    return address && ConnectTo(stream, *address);
}

void EndTls() {
    std::unique_lock lock(Tls().mutex);
    Tls().over = true;
    Tls().changed.wait_for(lock, kPatienceAtExit, [] { return Tls().users == 0; });
}

}  // namespace Driverless
