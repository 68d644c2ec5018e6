// SPDX-License-Identifier: Apache-2.0

// What is left of a pass phrase in the memory of a process that has offered it to a printer that
// refuses it, quoting it.

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "modules/driverless/ipp/ipp_query.h"
#include "tests/support/own_memory_linux.h"

namespace {

using namespace Driverless;
using testing::IsEmpty;

#define END_OF_SECRET "correct horse 7"
#define PASS_PHRASE "a long way, " END_OF_SECRET

std::string Attribute(char tag, const std::string& name, const std::string& value) {
    return std::string(1, tag) + '\0' + static_cast<char>(name.size()) + name + '\0' +
           static_cast<char>(value.size()) + value;
}

// Not possible, quoting twice.
std::string Refusal() {
    const std::string quote = "no: " PASS_PHRASE ", no: " PASS_PHRASE;
    const std::string message = std::string("\2\0\4\4\0\0\0\1\1", 9) +
                                Attribute(0x47, "attributes-charset", "utf-8") +
                                Attribute(0x48, "attributes-natural-language", "en") +
                                Attribute(0x41, "status-message", quote) + '\3';
    return "HTTP/1.1 200 OK\r\nContent-Type: application/ipp\r\nContent-Length: " +
           std::to_string(message.size()) + "\r\n\r\n" + message;
}

// A printer in a process of its own, which may keep what it likes.
class QuotingPrinter {
public:
    QuotingPrinter() : listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
        EXPECT_EQ(listen(listener, 5), 0);
        EXPECT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
        process = fork();
        if (process == 0) {
            Serve();
        }
    }
    ~QuotingPrinter() {
        close(listener);
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    QuotingPrinter(const QuotingPrinter&) = delete;
    QuotingPrinter& operator=(const QuotingPrinter&) = delete;

    Printer Place() const {
        Printer place;
        place.kind = ServiceKind::Ipp;
        place.address = "127.0.0.1";
        place.host = "127.0.0.1";
        place.port = ntohs(address.sin_port);
        place.resource = "ipp/print";
        return place;
    }

private:
    [[noreturn]] void Serve() const {
        const int connection = accept(listener, nullptr, nullptr);
        std::string request;
        char room[4096];
        while (request.find(PASS_PHRASE "\3") == std::string::npos) {
            const ssize_t count = read(connection, room, sizeof room);
            if (count <= 0) {
                _exit(1);
            }
            request.append(room, static_cast<std::size_t>(count));
        }
        const std::string answer = Refusal();
        _exit(write(connection, answer.data(), answer.size()) < 0 ? 1 : 0);
    }

    const int listener;
    sockaddr_in address{};
    pid_t process = -1;
};

TEST(DriverlessMemory, HoldsNoPassPhraseThatAPrinterQuoted) {
    const QuotingPrinter printer;
    {
        const IppAnswer answer =
            AskInTime(printer.Place(), kSettingPatience,
                      {IppQuestion::Kind::Set, {"Office", Base::Secret(PASS_PHRASE)}});
        EXPECT_EQ(answer.kind, IppAnswer::Kind::NoPrinter);
        EXPECT_EQ(answer.problem, "no: ***, no: ***");
    }
    EXPECT_THAT(PlacesThatStay(END_OF_SECRET), IsEmpty());
}

}  // namespace
