#pragma once

// Asks a printer for its attributes over IPP, and gives it its Wi-Fi settings.

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <string>

#include "modules/driverless/printer/printer.h"
#include "modules/driverless/printer/wifi_settings.h"

namespace Driverless {

using Clock = std::chrono::steady_clock;

// How long a printer has for its answer.
constexpr std::chrono::milliseconds kAnswerPatience{2000};

// How long a printer has to take its settings: some write them to slow memory first.
constexpr std::chrono::milliseconds kSettingPatience{10000};

struct IppQuestion {
    enum class Kind { Attributes, AttributesWithWifi, Set };
    Kind kind = Kind::Attributes;
    WifiSettings settings;  // to be set, both at once
};

struct IppAnswer {
    enum class Kind {
        NoAnswer,   // nothing there, or silence
        NoPrinter,  // no IPP printer, or none at this path, or it refuses what was asked
        Denied,     // it wants to know who asks, or does not allow it
        Granted,    // `attributes` hold what the printer said; it has taken what was set
    };
    Kind kind = Kind::NoAnswer;
    PrinterAttributes attributes;
    std::string problem;     // without the pass phrase
    bool connected = false;  // something has accepted the connection
    bool sent = false;       // the whole question went out
    bool refused = false;    // the host is there, and nobody listens on it
};

// One question to one printer.
class IppQuery {
public:
    IppQuery(Printer asked, Clock::time_point answerDeadline, IppQuestion question = {});
    ~IppQuery();

    // Asks, and waits for the answer until the deadline, however slowly it comes. An answer that is
    // larger or deeper than any printer's is refused.
    IppAnswer Run();

    // Makes Run come back soon. From any thread.
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

// A query under way on a thread of its own, which is left behind when it is not over in time.
class IppAsking {
public:
    IppAsking(const Printer& asked, Clock::time_point answerDeadline, IppQuestion question = {});
    ~IppAsking();

    // Whether it is over by then.
    bool IsOver(Clock::time_point by) const;

    // The answer, by the deadline. Throws what the query throws (out of memory).
    IppAnswer Answer() const;

    IppAsking(const IppAsking&) = delete;
    IppAsking& operator=(const IppAsking&) = delete;

private:
    const Clock::time_point deadline;
    const std::shared_ptr<IppQuery> query;
    std::shared_future<IppAnswer> answer;
};

// Runs a query and comes back no later than its patience allows. Throws what the query throws (out
// of memory).
IppAnswer AskInTime(const Printer& printer, std::chrono::milliseconds patience,
                    IppQuestion question = {});

// Whether something accepts a connection at the printer's address.
bool AcceptsConnection(const Printer& printer, std::chrono::milliseconds patience);

// For the end of the process, which destroys what TLS stands on: from here on no query begins to
// use it, and those that do have a moment to come to their end.
void EndTls();

}  // namespace Driverless
