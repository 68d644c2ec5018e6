// SPDX-License-Identifier: Apache-2.0

#include <cups/cups.h>
#include <netdb.h>
#include <sys/un.h>

#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "base/environment.h"
#include "base/ipp/byte_stream_linux.h"
#include "base/ipp/ipp_exchange_linux.h"
#include "base/ipp/ipp_request.h"
#include "host/PrinterAdapter/print_queue.h"
#include "host/PrinterAdapter/spooler.h"

namespace PrinterAdapter {

namespace {

// A queue takes about 500 bytes and ten attributes including its group: enough for 10,000 queues
// with names and locations of usual length.
constexpr Base::IppLimits kLimits{
    .bytes = std::size_t{16} * 1024 * 1024, .attributes = 200000, .values = 400000};

// The usual socket of the host's own spooler.
constexpr const char* kOwnSocket = "/run/cups/cups.sock";

constexpr std::uint16_t kNotFound = 0x0406;
constexpr std::uint16_t kFirstError = 0x0400;
constexpr int kUnauthorized = 401;

// An attribute of the spooler's answer, and its member of PrintQueue.
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

// An address of the spooler.
struct Address {
    sockaddr_storage storage{};
    socklen_t size = 0;

    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&storage); }
    bool IsSocketFile() const { return storage.ss_family == AF_UNIX; }
};

std::vector<Address> SocketFile(std::string_view path) {
    sockaddr_un file{};
    if (path.size() >= sizeof file.sun_path) {
        return {};
    }
    file.sun_family = AF_UNIX;
    path.copy(file.sun_path, path.size());
    Address address;
    std::memcpy(&address.storage, &file, sizeof file);
    address.size = sizeof file;
    return {address};
}

struct FreeAddresses {
    void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

std::vector<Address> AddressesOf(const std::string& host, int port) {
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &wanted, &found) != 0) {
        return {};
    }
    const std::unique_ptr<addrinfo, FreeAddresses> owner(found);
    std::vector<Address> addresses;
    for (const addrinfo* one = found; one != nullptr; one = one->ai_next) {
        Address& address = addresses.emplace_back();
        std::memcpy(&address.storage, one->ai_addr, one->ai_addrlen);
        address.size = one->ai_addrlen;
    }
    return addresses;
}

struct Spooler {
    std::string server;  // a host, or the path of a socket
    int port;
    bool tls;

    std::vector<Address> Addresses() const {
        return server.starts_with('/') ? SocketFile(server) : AddressesOf(server, port);
    }
};

// Finds the spooler's address from CUPS_SERVER or the system's settings. `ignored`: why CUPS_SERVER
// was ignored.
Spooler FindSpooler(std::string& ignored) {
    for (const char* const variable : {"CUPS_SERVER", "CUPS_ENCRYPTION", "IPP_PORT"}) {
        const std::string line = Base::ReadEnvironment(variable).ignored;
        ignored += line.empty() || ignored.empty() ? line : "; " + line;
    }
    if (!ignored.empty()) {
        return {kOwnSocket, 0, false};
    }
    return {
        cupsServer(), ippPort(),
        cupsEncryption() == HTTP_ENCRYPTION_ALWAYS || cupsEncryption() == HTTP_ENCRYPTION_REQUIRED};
}

bool Connect(Base::ByteStream& stream, const Spooler& spooler, const Address& address) {
    const bool tls = spooler.tls && !address.IsSocketFile();
    return stream.Connect(address.Get(), address.size) && (!tls || stream.StartTls(spooler.server));
}

// Connects to the first reachable address.
std::optional<Address> ConnectToAny(Base::ByteStream& stream, const Spooler& spooler) {
    for (const Address& address : spooler.Addresses()) {
        if (Connect(stream, spooler, address)) {
            return address;
        }
    }
    return std::nullopt;
}

// Sends one request over an open connection.
Base::IppReply Ask(Base::ByteStream& stream, const Spooler& spooler, const Address& address,
                   const std::string& authorization) {
    Base::IppRequest request(Base::IppRequest::Version::Usual, Base::IppOperation::CupsGetPrinters);
    std::vector<std::string_view> names{kState};
    for (const TextField& text : kTextFields) {
        names.push_back(text.attribute);
    }
    request.AddKeywords("requested-attributes", names);
    const Base::IppTarget target{address.IsSocketFile() ? "localhost" : spooler.server,
                                 static_cast<std::uint16_t>(spooler.port), "/", authorization};
    return Base::ExchangeIpp(stream, target, request.Finish(), kLimits);
}

// A local spooler that requires authentication identifies the user at the other end of the socket
// itself.
Base::IppReply AskByName(Base::ByteStream& stream, const Spooler& spooler, const Address& address) {
    Base::IppReply reply = Ask(stream, spooler, address, {});
    const bool wantsName = reply.httpStatus == kUnauthorized && address.IsSocketFile();
    return wantsName && Connect(stream, spooler, address)
               ? Ask(stream, spooler, address, std::string("PeerCred ") + cupsUser())
               : std::move(reply);
}

// Each printer's attributes are one group.
std::vector<PrinterSdk::PrinterProperty> PrintersOf(const Base::IppMessage& answer) {
    std::vector<PrinterSdk::PrinterProperty> printers;
    for (const Base::IppGroup& group : answer.Groups()) {
        if (group.Tag() != Base::kIppPrinterGroup) {
            continue;
        }
        PrintQueue queue;
        for (const TextField& text : kTextFields) {
            queue.*text.field = group.Text(text.attribute);
        }
        if (const auto state = group.Integer(kState)) {
            queue.state = ippEnumString(kState.data(), *state);
        }
        if (!queue.name.empty()) {
            printers.push_back(PrinterOf(queue));
        }
    }
    return printers;
}

std::string RefusalOf(const Base::IppMessage& answer) {
    const auto group = answer.Group(Base::kIppOperationGroup);
    const std::string message = group ? group->Text("status-message") : std::string();
    return message.empty() ? ippErrorString(static_cast<ipp_status_t>(answer.Status())) : message;
}

}  // namespace

SpoolerAnswer AskSpooler() {
    SpoolerAnswer answer;
    const Spooler spooler = FindSpooler(answer.note);
    Base::ByteStream stream(Base::ByteStream::Clock::now() + kSpoolerTime);
    const auto address = ConnectToAny(stream, spooler);
    if (!address) {
        answer.problem = "no print spooler can be reached at " + spooler.server;
        return answer;
    }
    const Base::IppReply reply = AskByName(stream, spooler, *address);
    if (reply.message && reply.message->Status() == kNotFound) {
        return answer;  // no printer is installed
    }
    if (!reply.message || reply.message->Status() >= kFirstError) {
        answer.problem = "no answer from the print spooler at " + spooler.server + ": " +
                         (reply.message ? RefusalOf(*reply.message) : reply.problem);
        return answer;
    }
    answer.printers = PrintersOf(*reply.message);
    return answer;
}

}  // namespace PrinterAdapter
