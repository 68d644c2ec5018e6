// SPDX-License-Identifier: Apache-2.0

// A printer that waits to be put on a Wi-Fi network, made with a printer framework of its own. It
// writes one line an event to standard output: "ready", "given NAME PASS-PHRASE" in hexadecimal
// digits, "state NUMBER". It must run in network and UTS namespaces of its own.
//
// usage: wifi_printer FOLDER ADDRESS [--port PORT] [--serial NUMBER] [--beside-bridge] [--tls]
//                     [--refuses] [--joins-in MS] [--network NAME=PASS-PHRASE ...]
//
// Who asks at ADDRESS, port 631 or PORT, reaches the printer through a bridge on the printer
// itself, as over USB: it is trusted. With --beside-bridge it is reached directly, and trusts
// nobody but this host itself. The networks are those in its range; it is given others in vain.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <pappl/pappl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace {

constexpr int kHiddenPort = 8631;

struct Options {
    std::string folder;
    std::string address;
    int port = 631;
    std::string serialNumber = "RADIO1";
    bool besideBridge = false;
    bool tls = false;
    bool refuses = false;
    std::chrono::milliseconds joinsIn{600};
    std::map<std::string, std::string> networks;
};

// What the framework's threads share; never destroyed.
struct Radio {
    Options options;
    std::mutex mutex;
    pappl_wifi_t wifi{};
};

Radio& TheRadio() {
    static Radio& radio = *new Radio;
    return radio;
}

void Say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

std::string Hex(std::string_view text) {
    std::string digits;
    for (const char character : text) {
        std::array<char, 3> two{};
        std::snprintf(two.data(), two.size(), "%02x", static_cast<unsigned char>(character));
        digits += two.data();
    }
    return digits.empty() ? "-" : digits;
}

void Enter(pappl_wifi_state_t state) {
    // Who sees the state finds it told.
    const std::lock_guard lock(TheRadio().mutex);
    TheRadio().wifi.state = state;
    Say("state " + std::to_string(state));
}

pappl_wifi_state_t Outcome(const std::string& name, const std::string& passPhrase) {
    const auto& networks = TheRadio().options.networks;
    const auto network = networks.find(name);
    if (network == networks.end()) {
        return PAPPL_WIFI_STATE_NOT_VISIBLE;
    }
    return network->second == passPhrase ? PAPPL_WIFI_STATE_ON : PAPPL_WIFI_STATE_CANNOT_JOIN;
}

bool Join(pappl_system_t*, void*, const char* name, const char* passPhrase) {
    Say("given " + Hex(name) + " " + Hex(passPhrase));
    const std::size_t length = std::strlen(passPhrase);
    if (TheRadio().options.refuses || (length != 0 && length < 8)) {
        return false;
    }
    {
        const std::lock_guard lock(TheRadio().mutex);
        std::snprintf(TheRadio().wifi.ssid, sizeof TheRadio().wifi.ssid, "%s", name);
    }
    Enter(PAPPL_WIFI_STATE_JOINING);
    std::thread([outcome = Outcome(name, passPhrase)] {
        std::this_thread::sleep_for(TheRadio().options.joinsIn);
        Enter(outcome);
    }).detach();
    return true;
}

int List(pappl_system_t*, void*, cups_dest_t** networks) {
    *networks = nullptr;
    return 0;
}

pappl_wifi_t* Status(pappl_system_t*, void*, pappl_wifi_t* wifi) {
    const std::lock_guard lock(TheRadio().mutex);
    *wifi = TheRadio().wifi;
    return wifi;
}

bool Describe(pappl_system_t*, const char*, const char*, const char*, pappl_pr_driver_data_t* data,
              ipp_t**, void*) {
    std::snprintf(data->make_and_model, sizeof data->make_and_model, "Acme Radio Laser");
    data->format = "application/vnd.acme";
    data->printfile_cb = [](pappl_job_t*, pappl_pr_options_t*, pappl_device_t*) { return true; };
    data->rstartjob_cb = data->printfile_cb;
    data->rendjob_cb = data->printfile_cb;
    data->rstartpage_cb = [](pappl_job_t*, pappl_pr_options_t*, pappl_device_t*, unsigned) {
        return true;
    };
    data->rendpage_cb = data->rstartpage_cb;
    data->rwriteline_cb = [](pappl_job_t*, pappl_pr_options_t*, pappl_device_t*, unsigned,
                             const unsigned char*) { return true; };
    data->status_cb = [](pappl_printer_t*) { return true; };
    data->raster_types = PAPPL_PWG_RASTER_TYPE_SGRAY_8 | PAPPL_PWG_RASTER_TYPE_BLACK_8;
    data->color_supported = PAPPL_COLOR_MODE_MONOCHROME;
    data->color_default = PAPPL_COLOR_MODE_MONOCHROME;
    data->sides_supported = data->sides_default = PAPPL_SIDES_ONE_SIDED;
    data->orient_default = IPP_ORIENT_NONE;
    data->quality_default = IPP_QUALITY_NORMAL;
    data->ppm = 20;
    data->num_resolution = 1;
    data->x_resolution[0] = data->y_resolution[0] = 300;
    data->x_default = data->y_default = 300;
    data->num_media = data->num_source = data->num_type = 1;
    data->media[0] = "iso_a4_210x297mm";
    data->source[0] = "main";
    data->type[0] = "stationery";
    std::snprintf(data->media_default.size_name, sizeof data->media_default.size_name,
                  "iso_a4_210x297mm");
    data->media_ready[0] = data->media_default;
    return true;
}

// --- the bridge ---------------------------------------------------------------------------------

sockaddr_in At(const char* address, int port) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(static_cast<std::uint16_t>(port));
    if (inet_pton(AF_INET, address, &place.sin_addr) != 1) {
        std::fprintf(stderr, "wifi_printer: '%s' is no IPv4 address\n", address);
        std::exit(2);
    }
    return place;
}

void Carry(int from, int to) {
    std::array<char, 4096> data{};
    for (ssize_t size = 0; (size = read(from, data.data(), data.size())) > 0;) {
        if (send(to, data.data(), static_cast<std::size_t>(size), MSG_NOSIGNAL) != size) {
            break;
        }
    }
    shutdown(to, SHUT_WR);
}

void Bridge(int outside) {
    const int inside = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in place = At("127.0.0.1", kHiddenPort);
    if (connect(inside, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0) {
        std::thread back(Carry, inside, outside);
        Carry(outside, inside);
        back.join();
    }
    close(inside);
    close(outside);
}

void OpenBridge(const std::string& address, int port) {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int yes = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    const sockaddr_in place = At(address.c_str(), port);
    if (bind(listener, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0 ||
        listen(listener, 16) != 0) {
        std::perror("wifi_printer: bridge");
        std::exit(1);
    }
    std::thread([listener] {
        for (int outside = 0; (outside = accept(listener, nullptr, nullptr)) >= 0;) {
            std::thread(Bridge, outside).detach();
        }
    }).detach();
}

// --- the printer --------------------------------------------------------------------------------

[[noreturn]] void BadUsage(const std::string& what) {
    std::fprintf(stderr, "wifi_printer: %s\n", what.c_str());
    std::exit(2);
}

Options Parse(int count, char** arguments) {
    if (count < 3) {
        BadUsage("needs a folder and an address");
    }
    Options options;
    options.folder = arguments[1];
    options.address = arguments[2];
    for (int i = 3; i < count; ++i) {
        const std::string argument = arguments[i];
        const bool takesValue = argument == "--joins-in" || argument == "--network" ||
                                argument == "--port" || argument == "--serial";
        if (takesValue && ++i == count) {
            BadUsage(argument + " needs a value");
        }
        const std::string value = arguments[i];
        if (argument == "--beside-bridge") {
            options.besideBridge = true;
        } else if (argument == "--tls") {
            options.tls = true;
        } else if (argument == "--refuses") {
            options.refuses = true;
        } else if (argument == "--port") {
            options.port = std::stoi(value);
        } else if (argument == "--serial") {
            options.serialNumber = value;
        } else if (argument == "--joins-in") {
            options.joinsIn = std::chrono::milliseconds(std::stol(value));
        } else if (argument == "--network") {
            const std::size_t equals = value.find('=');
            options.networks[value.substr(0, equals)] = value.substr(equals + 1);
        } else {
            BadUsage("unknown option '" + argument + "'");
        }
    }
    return options;
}

pappl_system_t* NewSystem(const Options& options) {
    static const char log[] = "-";
    const pappl_soptions_t choices = options.tls ? PAPPL_SOPTIONS_NONE : PAPPL_SOPTIONS_NO_TLS;
    pappl_system_t* const system = papplSystemCreate(
        choices, "Acme Radio", options.besideBridge ? options.port : kHiddenPort, nullptr,
        options.folder.c_str(), log, PAPPL_LOGLEVEL_INFO, nullptr, false);
    if (system == nullptr) {
        std::perror("wifi_printer: system");
        std::exit(1);
    }
    static pappl_pr_driver_t drivers[] = {{"acme", "Acme Radio Laser", nullptr, nullptr}};
    papplSystemAddListeners(system, options.besideBridge ? options.address.c_str() : "127.0.0.1");
    papplSystemSetPrinterDrivers(system, 1, drivers, nullptr, nullptr, Describe, nullptr);
    papplSystemSetWiFiCallbacks(system, Join, List, Status, nullptr);
    return system;
}

}  // namespace

int main(int count, char** arguments) {
    Radio& radio = TheRadio();
    radio.options = Parse(count, arguments);
    radio.wifi.state = PAPPL_WIFI_STATE_NOT_CONFIGURED;
    // Keys are made here, not in the machine's own folder.
    setenv("CUPS_SERVERROOT", radio.options.folder.c_str(), 1);
    pappl_system_t* const system = NewSystem(radio.options);
    const std::string deviceId =
        "MFG:Acme;MDL:Radio Laser;CMD:ACME;SN:" + radio.options.serialNumber + ";";
    pappl_printer_t* const printer = papplPrinterCreate(system, 0, "Acme Radio Laser", "acme",
                                                        deviceId.c_str(), "file:///dev/null");
    if (printer == nullptr) {
        std::perror("wifi_printer: printer");
        return 1;
    }
    // Nobody sees it on a network before it is on one.
    papplPrinterSetDNSSDName(printer, nullptr);
    if (!radio.options.besideBridge) {
        OpenBridge(radio.options.address, radio.options.port);
    }
    std::thread([system] {
        while (!papplSystemIsRunning(system)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        Say("ready");
    }).detach();
    papplSystemRun(system);
    return 0;
}
