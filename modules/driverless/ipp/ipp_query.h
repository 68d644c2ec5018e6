// SPDX-License-Identifier: Apache-2.0

#pragma once

// Reads a printer's attributes and sends its Wi-Fi settings, over IPP.

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <string>

#include "modules/driverless/printer/printer.h"
#include "modules/driverless/printer/wifi_settings.h"

namespace Driverless {

using Clock = std::chrono::steady_clock;

// The time that a printer has for its answer.
constexpr std::chrono::milliseconds kAnswerPatience{2000};

// The time that a printer has to confirm its settings: some write them to slow memory first.
constexpr std::chrono::milliseconds kSettingPatience{10000};

struct IppQuestion {
    enum class Kind { Attributes, AttributesWithWifi, Set };
    Kind kind = Kind::Attributes;
    WifiSettings settings;  // for Set: both are sent together
};

struct IppAnswer {
    enum class Kind {
        NoAnswer,   // not reachable, or silent
        NoPrinter,  // not an IPP printer, not at this path, or the request is refused
        Denied,     // the printer requires a password, or forbids the request
        Granted,    // success: `attributes` are filled, or the settings accepted
    };
    Kind kind = Kind::NoAnswer;
    PrinterAttributes attributes;
    std::string problem;     // without the pass phrase
    bool connected = false;  // something has accepted the connection
    bool sent = false;       // the whole question went out
    bool refused = false;    // the host is there, and nobody listens on it
};

// One IPP request to one printer.
class IppQuery {
public:
    IppQuery(Printer asked, Clock::time_point answerDeadline, IppQuestion question = {});
    ~IppQuery();

    // Sends the request and waits for the answer until the deadline, even if bytes keep arriving.
    // Refuses an answer that is larger or deeper than that of any printer.
    IppAnswer Run();

    // Makes Run return soon. Safe from any thread.
    void Abort();

    // Whether something has accepted the connection, and whether the whole question has gone out,
    // by now. From any thread.
    bool IsConnected() const;
    bool IsSent() const;

    IppQuery(const IppQuery&) = delete;
    IppQuery& operator=(const IppQuery&) = delete;

private:
    class State;
    std::unique_ptr<State> state;
};

// A query running on a separate thread, which is abandoned when the query does not end in time.
class IppAsking {
public:
    IppAsking(const Printer& asked, Clock::time_point answerDeadline, IppQuestion question = {});
    ~IppAsking();

    // Waits until `by` at the latest; returns whether the query has ended.
    bool IsOver(Clock::time_point by) const;

    // Waits for the answer until the deadline. Throws what the query throws (out of memory).
    IppAnswer Answer() const;

    IppAsking(const IppAsking&) = delete;
    IppAsking& operator=(const IppAsking&) = delete;

private:
    const Clock::time_point deadline;
    const std::shared_ptr<IppQuery> query;
    std::shared_future<IppAnswer> answer;
};

// Runs a query and returns after `patience` at the latest. Throws what the query throws (out of
// memory).
IppAnswer AskInTime(const Printer& printer, std::chrono::milliseconds patience,
                    IppQuestion question = {});

// Whether the printer's address accepts a connection within `patience`.
bool AcceptsConnection(const Printer& printer, std::chrono::milliseconds patience);

// For process exit, which destroys objects that TLS needs: from now on no query starts to use TLS,
// and running uses get a short time to end.
void EndTls();

}  // namespace Driverless
