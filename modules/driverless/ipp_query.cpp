#include "ipp_query.h"

#include <arpa/inet.h>
#include <cups/cups.h>
#include <fcntl.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

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

namespace Driverless {

namespace {

using std::chrono::milliseconds;

// How often a query that waits looks whether it is still wanted.
constexpr double kLookUpSeconds = 0.25;
constexpr milliseconds kPatienceAtExit{200};

constexpr const char* kWifiName = "printer-wifi-ssid";
constexpr const char* kWifiPassword = "printer-wifi-password";

struct FreeHttp {
    void operator()(http_t* http) const { httpClose(http); }
};
struct FreeIpp {
    void operator()(ipp_t* message) const { ippDelete(message); }
};
struct FreeAddresses {
    void operator()(http_addrlist_t* addresses) const { httpAddrFreeList(addresses); }
};
using Http = std::unique_ptr<http_t, FreeHttp>;
using Ipp = std::unique_ptr<ipp_t, FreeIpp>;
using Addresses = std::unique_ptr<http_addrlist_t, FreeAddresses>;

// Who uses TLS at this moment. Never destroyed: queries run until the process is gone.
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

milliseconds Remaining(Clock::time_point deadline) {
    return std::chrono::duration_cast<milliseconds>(deadline - Clock::now());
}

// Only an address that needs no name service: that could take any time.
Addresses NumericAddress(const Printer& printer) {
    in_addr address{};
    if (printer.port == 0 || inet_pton(AF_INET, printer.address.c_str(), &address) != 1) {
        return nullptr;
    }
    return Addresses(
        httpAddrGetList(printer.address.c_str(), AF_INET, std::to_string(printer.port).c_str()));
}

// A printer that wants a password is not asked for more: nobody is there to type it.
const char* NoPassword(const char*, http_t*, const char*, const char*, void*) {
    return nullptr;
}

using Names = std::vector<const char*>;

Names WantedAttributes(bool withWifi) {
    Names names{
        "printer-make-and-model", "printer-device-id", "printer-serial-number",
        "printer-uuid",           "printer-state",     "printer-is-accepting-jobs",
        "printer-name",
    };
    if (withWifi) {
        names.insert(names.end(),
                     {"printer-wifi-state", "printer-wifi-ssid", "printer-uri-supported"});
    }
    return names;
}

void AddSettings(ipp_t* request, const WifiSettings& settings) {
    const std::string& passPhrase = settings.passPhrase.Text();
    ippAddString(request, IPP_TAG_PRINTER, IPP_TAG_NAME, kWifiName, nullptr, settings.name.c_str());
    ippAddOctetString(request, IPP_TAG_PRINTER, kWifiPassword, passPhrase.data(),
                      static_cast<int>(passPhrase.size()));
}

// A message that may hold the pass phrase; it is wiped before the message goes.
class Request {
public:
    explicit Request(ipp_op_t operation) : message(ippNewRequest(operation)) {}
    ~Request() {
        ipp_attribute_t* const attribute =
            ippFindAttribute(message.get(), kWifiPassword, IPP_TAG_STRING);
        int size = 0;
        void* const secret =
            attribute == nullptr ? nullptr : ippGetOctetString(attribute, 0, &size);
        if (secret != nullptr) {
            explicit_bzero(secret, static_cast<std::size_t>(size));
        }
    }
    ipp_t* Get() const { return message.get(); }

    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;

private:
    const Ipp message;
};

std::string UriOf(const Printer& printer) {
    std::array<char, 1024> uri{};
    const bool tls = printer.kind == ServiceKind::Ipps;
    httpAssembleURI(HTTP_URI_CODING_ALL, uri.data(), static_cast<int>(uri.size()),
                    tls ? "ipps" : "ipp", nullptr, printer.host.c_str(), printer.port,
                    printer.resource.c_str());
    return uri.data();
}

void Fill(ipp_t* request, const Printer& printer, const IppQuestion& question, int minorVersion) {
    ippSetVersion(request, minorVersion == 0 ? 2 : 1, minorVersion);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr,
                 UriOf(printer).c_str());
    if (question.kind == IppQuestion::Kind::Set) {
        AddSettings(request, question.settings);
        return;
    }
    const Names wanted = WantedAttributes(question.kind == IppQuestion::Kind::AttributesWithWifi);
    ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes",
                  static_cast<int>(wanted.size()), nullptr, wanted.data());
}

ipp_op_t OperationOf(const IppQuestion& question) {
    return question.kind == IppQuestion::Kind::Set ? IPP_OP_SET_PRINTER_ATTRIBUTES
                                                   : IPP_OP_GET_PRINTER_ATTRIBUTES;
}

std::string TextOf(ipp_t* response, const char* name) {
    ipp_attribute_t* const attribute = ippFindAttribute(response, name, IPP_TAG_ZERO);
    const char* text = attribute == nullptr ? nullptr : ippGetString(attribute, 0, nullptr);
    return text == nullptr ? std::string() : text;
}

bool HasTlsUri(ipp_t* response) {
    ipp_attribute_t* const uris = ippFindAttribute(response, "printer-uri-supported", IPP_TAG_URI);
    for (int i = 0; uris != nullptr && i < ippGetCount(uris); ++i) {
        const char* const uri = ippGetString(uris, i, nullptr);
        if (uri != nullptr && std::string_view(uri).starts_with("ipps:")) {
            return true;
        }
    }
    return false;
}

void TakeWifi(ipp_t* response, PrinterAttributes& attributes) {
    ipp_attribute_t* const state = ippFindAttribute(response, "printer-wifi-state", IPP_TAG_ENUM);
    if (state != nullptr) {
        attributes.wifiState = static_cast<WifiState>(ippGetInteger(state, 0));
    }
    attributes.wifiName = TextOf(response, kWifiName);
    attributes.speaksTls = HasTlsUri(response);
}

PrinterAttributes AttributesOf(ipp_t* response) {
    PrinterAttributes attributes;
    attributes.makeAndModel = TextOf(response, "printer-make-and-model");
    attributes.deviceId = TextOf(response, "printer-device-id");
    attributes.serialNumber = TextOf(response, "printer-serial-number");
    attributes.uuid = TextOf(response, "printer-uuid");
    ipp_attribute_t* const accepts =
        ippFindAttribute(response, "printer-is-accepting-jobs", IPP_TAG_BOOLEAN);
    attributes.acceptsJobs = accepts == nullptr || ippGetBoolean(accepts, 0) != 0;
    ipp_attribute_t* const printerState = ippFindAttribute(response, "printer-state", IPP_TAG_ENUM);
    attributes.stopped =
        printerState != nullptr && ippGetInteger(printerState, 0) == IPP_PSTATE_STOPPED;
    TakeWifi(response, attributes);
    return attributes;
}

IppAnswer Problem(IppAnswer::Kind kind) {
    const char* const reason = cupsLastErrorString();
    return {kind, {}, reason == nullptr ? "" : reason};
}

// Of an HTTP server that gave no IPP answer.
IppAnswer::Kind KindOf(http_status_t status) {
    switch (status) {
        case HTTP_STATUS_UNAUTHORIZED:
        case HTTP_STATUS_FORBIDDEN:
        case HTTP_STATUS_UPGRADE_REQUIRED:
        case HTTP_STATUS_CUPS_AUTHORIZATION_CANCELED:
            return IppAnswer::Kind::Denied;
        default:
            return status >= HTTP_STATUS_OK ? IppAnswer::Kind::NoPrinter
                                            : IppAnswer::Kind::NoAnswer;
    }
}

bool IsDenied(ipp_status_t status) {
    return status == IPP_STATUS_ERROR_FORBIDDEN || status == IPP_STATUS_ERROR_NOT_AUTHENTICATED ||
           status == IPP_STATUS_ERROR_NOT_AUTHORIZED;
}

}  // namespace

class IppQuery::State {
public:
    State(Printer asked, Clock::time_point answerDeadline, IppQuestion asking)
        : printer(std::move(asked)), deadline(answerDeadline), question(std::move(asking)) {}
    ~State() {
        if (connection >= 0) {
            close(connection);
        }
    }

    IppAnswer Run();
    void Abort();
    bool IsSent() const { return wholeSent; }

    State(const State&) = delete;
    State& operator=(const State&) = delete;

private:
    static int GoOn(http_t* http, void* self);
    IppAnswer ConnectAndAsk();
    Http Connect(http_addrlist_t* addresses);
    IppAnswer Ask(http_t* http);
    bool IsGranted(ipp_status_t status) const;
    Ipp Exchange(http_t* http, int minorVersion);
    bool IsOver() const { return aborted || Clock::now() >= deadline; }

    const Printer printer;
    const Clock::time_point deadline;
    const IppQuestion question;
    std::atomic<bool> aborted{false};
    std::atomic<bool> wholeSent{false};
    std::mutex mutex;
    // A descriptor of this query's own, so that an abort never meets one that libcups has closed
    // and somebody else opened again.
    int connection = -1;
};

IppAnswer IppQuery::State::Run() {
    IppAnswer answer = ConnectAndAsk();
    answer.sent = wholeSent;
    return answer;
}

IppAnswer IppQuery::State::ConnectAndAsk() {
    const Addresses addresses = NumericAddress(printer);
    if (addresses == nullptr || IsOver()) {
        return {};
    }
    std::optional<TlsUser> tls;
    if (printer.kind == ServiceKind::Ipps && !tls.emplace().IsAdmitted()) {
        return {};
    }
    cupsSetPasswordCB2(NoPassword, nullptr);
    const Http http = Connect(addresses.get());
    return http == nullptr ? Problem(IppAnswer::Kind::NoAnswer) : Ask(http.get());
}

Http IppQuery::State::Connect(http_addrlist_t* addresses) {
    const auto encryption =
        printer.kind == ServiceKind::Ipps ? HTTP_ENCRYPTION_ALWAYS : HTTP_ENCRYPTION_NEVER;
    Http http(httpConnect2(
        printer.host.c_str(), printer.port, addresses, AF_UNSPEC, encryption, 1,
        static_cast<int>(std::max(Remaining(deadline).count(), milliseconds::rep{1})), nullptr));
    if (http == nullptr) {
        return nullptr;
    }
    httpSetTimeout(http.get(), kLookUpSeconds, GoOn, this);
    const std::lock_guard lock(mutex);
    connection = fcntl(httpGetFd(http.get()), F_DUPFD_CLOEXEC, 3);
    return aborted ? nullptr : std::move(http);
}

int IppQuery::State::GoOn(http_t*, void* self) {
    return static_cast<const State*>(self)->IsOver() ? 0 : 1;
}

IppAnswer IppQuery::State::Ask(http_t* http) {
    Ipp response = Exchange(http, 0);
    if (response != nullptr &&
        ippGetStatusCode(response.get()) == IPP_STATUS_ERROR_VERSION_NOT_SUPPORTED) {
        response = Exchange(http, 1);
    }
    if (response == nullptr) {
        return Problem(IsOver() ? IppAnswer::Kind::NoAnswer : KindOf(httpGetStatus(http)));
    }
    const ipp_status_t status = ippGetStatusCode(response.get());
    if (!IsGranted(status)) {
        return Problem(IsDenied(status) ? IppAnswer::Kind::Denied : IppAnswer::Kind::NoPrinter);
    }
    return {IppAnswer::Kind::Granted, AttributesOf(response.get()), {}};
}

// A printer that ignores an attribute that was to be set says that all went well, too.
bool IppQuery::State::IsGranted(ipp_status_t status) const {
    return question.kind == IppQuestion::Kind::Set ? status == IPP_STATUS_OK
                                                   : status <= IPP_STATUS_OK_EVENTS_COMPLETE;
}

// One request and its response, without the repetitions with which libcups would follow a server
// that redirects or wants a password.
Ipp IppQuery::State::Exchange(http_t* http, int minorVersion) {
    const Request request(OperationOf(question));
    Fill(request.Get(), printer, question, minorVersion);
    const http_status_t status =
        cupsSendRequest(http, request.Get(), printer.resource.c_str(), ippLength(request.Get()));
    // A printer that has it all may close the connection before libcups sees to the answer.
    wholeSent = wholeSent || ippGetState(request.Get()) == IPP_STATE_DATA;
    const bool sent = status <= HTTP_STATUS_CONTINUE || status == HTTP_STATUS_OK;
    return sent && status != HTTP_STATUS_ERROR
               ? Ipp(cupsGetResponse(http, printer.resource.c_str()))
               : nullptr;
}

void IppQuery::State::Abort() {
    aborted = true;
    const std::lock_guard lock(mutex);
    if (connection >= 0) {
        shutdown(connection, SHUT_RDWR);
    }
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
    none.sent = query->IsSent();
    return none;
}

IppAnswer AskInTime(const Printer& printer, milliseconds patience, IppQuestion question) {
    return IppAsking(printer, Clock::now() + patience, std::move(question)).Answer();
}

bool AcceptsConnection(const Printer& printer, milliseconds patience) {
    const Addresses addresses = NumericAddress(printer);
    int connection = -1;
    if (addresses == nullptr ||
        httpAddrConnect2(addresses.get(), &connection, static_cast<int>(patience.count()),
                         nullptr) == nullptr) {
        return false;
    }
    close(connection);
    return true;
}

void EndTls() {
    std::unique_lock lock(Tls().mutex);
    Tls().over = true;
    Tls().changed.wait_for(lock, kPatienceAtExit, [] { return Tls().users == 0; });
}

}  // namespace Driverless
