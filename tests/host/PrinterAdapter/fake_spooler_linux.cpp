// SPDX-License-Identifier: Apache-2.0

#include "tests/host/PrinterAdapter/fake_spooler_linux.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace PrinterAdapterTest {

namespace {

std::filesystem::path NewFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "spooler-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("mkdtemp");
    }
    return name;
}

}  // namespace

FakeSpooler::FakeSpooler(Serve serveConnection)
    : serve(std::move(serveConnection)),
      folder(NewFolder()),
      listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const std::string path = (folder / "socket").string();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, 8) != 0) {
        throw std::runtime_error("no socket at " + path);
    }
    setenv("CUPS_SERVER", path.c_str(), 1);
    thread = std::thread([this] { Accept(); });
}

FakeSpooler::~FakeSpooler() {
    isOver = true;
    thread.join();
    close(listener);
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

void FakeSpooler::Accept() {
    while (!isOver) {
        pollfd file{listener, POLLIN, 0};
        if (poll(&file, 1, 20) > 0) {
            const int connection = accept(listener, nullptr, nullptr);
            serve(connection, isOver);
            close(connection);
        }
    }
}

std::string ReadRequest(int connection) {
    std::string request;
    std::array<char, 4096> part{};
    for (pollfd file{connection, POLLIN, 0}; poll(&file, 1, 50) > 0;) {
        const auto size = recv(connection, part.data(), part.size(), 0);
        if (size <= 0) {
            break;
        }
        request.append(part.data(), static_cast<std::size_t>(size));
    }
    return request;
}

void Send(int connection, const std::string& text) {
    send(connection, text.data(), text.size(), MSG_NOSIGNAL);
}

}  // namespace PrinterAdapterTest
