// SPDX-License-Identifier: Apache-2.0

#include "app/output/json_output.h"

#include <fmt/chrono.h>

#include <nlohmann/json.hpp>

#include "app/library/vendor_texts.h"

namespace App {

namespace {

using Json = nlohmann::ordered_json;

std::string JsonLine(const Json& object) {
    return object.dump(-1, ' ', true, Json::error_handler_t::replace);
}

// The kind of service: its vendor's name for it, else its vendor's number.
Json Service(const Printer& printer) {
    const std::optional<std::string> name = ServiceName(printer.service, printer.vendor);
    return name ? Json(*name) : Json(printer.service);
}

Json PrinterObject(const Printer& printer) {
    return {{"serialNumber", printer.serialNumber},
            {"makeAndModel", printer.makeAndModel},
            {"address", printer.address},
            {"port", printer.port},
            {"vendor", printer.vendor},
            {"resource", printer.resource},
            {"service", Service(printer)}};
}

Json ModuleObject(const ModuleSurvey& module) {
    Json entryPoints = Json::object();
    for (const EntryPointSurvey& entryPoint : module.entryPoints) {
        entryPoints[entryPoint.name] = entryPoint.bound ? "bound" : "missing";
    }
    return {{"name", module.name},
            {"use", module.use},
            {"path", module.path},
            {"loaded", module.IsLoaded()},
            {"problem", module.IsLoaded() ? Json() : Json(module.problem)},
            {"entryPoints", entryPoints},
            {"hints", module.hints}};
}

Json UsbPrinterObject(const UsbPrinter& printer) {
    return {{"serialNumber", printer.serialNumber},
            {"makeAndModel", printer.makeAndModel},
            {"place", printer.address},
            {"vendor", printer.vendor}};
}

}  // namespace

std::string ProblemJson(const std::string& problem) {
    return JsonLine({{"problem", problem}});
}

std::string PrinterJson(const Printer& printer) {
    return JsonLine(PrinterObject(printer));
}

std::string StateJson(const Printer& printer, int state) {
    Json object = PrinterObject(printer);
    object["ready"] = state == 1;
    object["state"] = state;
    return JsonLine(object);
}

std::string VendorJson(const PrinterUtil::VendorListReport& list, const VendorInfo& vendor,
                       const std::vector<ModuleSurvey>& modules) {
    Json object{{"productId", vendor.productId},
                {"vendorList", list.path},
                {"moduleFolder", list.moduleFolder},
                {"modules", Json::array()}};
    for (const ModuleSurvey& module : modules) {
        object["modules"].push_back(ModuleObject(module));
    }
    return JsonLine(object);
}

std::string NetworkJson(const Network& network) {
    return JsonLine({{"network", network.name}, {"signal", network.signal}});
}

std::string HostNetworkJson(const HostNetwork& network) {
    return JsonLine({{"network", network.name},
                     {"signal", network.signal},
                     {"security", Json(network.security)},
                     {"offered", network.offered}});
}

std::string AccessPointJson(const AccessPoint& accessPoint) {
    return JsonLine({{"network", accessPoint.network},
                     {"hardwareAddress", accessPoint.hardwareAddress},
                     {"interface", accessPoint.interfaceName}});
}

std::string JoinJson(const std::string& network, bool joined, const std::string& problem) {
    Json object{{"network", network}, {"joined", joined}};
    if (!problem.empty()) {
        object["problem"] = problem;
    }
    return JsonLine(object);
}

std::string PingJson(const std::string& address, bool answers) {
    return JsonLine({{"address", address}, {"answers", answers}});
}

std::string ConfigureJson(const std::string& network, int result) {
    return JsonLine({{"network", network}, {"configured", result == 0}, {"result", result}});
}

std::string CheckJson(const Printer& printer, int result, bool isAnswer) {
    Json object = PrinterObject(printer);
    object["onLocalNetwork"] = isAnswer ? Json(result == 0) : Json();
    object["result"] = result;
    return JsonLine(object);
}

std::string InstalledPrinterJson(const InstalledPrinter& printer) {
    return JsonLine({{"serialNumber", printer.serialNumber},
                     {"model", printer.model},
                     {"onNetwork", printer.isOnNetwork ? Json(*printer.isOnNetwork) : Json()}});
}

std::string UsbPrinterJson(const UsbPrinter& printer) {
    return JsonLine(UsbPrinterObject(printer));
}

std::string ArrivalJson(const Arrival& arrival) {
    const std::time_t time = std::chrono::system_clock::to_time_t(arrival.time);
    Json object{{"time", fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(time))}};
    object.update(UsbPrinterObject(arrival.printer));
    return JsonLine(object);
}

std::string UsbConfigureJson(const UsbPrinter& printer, const std::string& network, int result) {
    return JsonLine({{"serialNumber", printer.serialNumber},
                     {"network", network},
                     {"configured", result == 0},
                     {"result", result}});
}

std::string StepJson(const StepEvent& event) {
    Json object{{"step", event.step}, {"state", event.state}};
    if (!event.network.empty()) {
        object["network"] = event.network;
    }
    if (event.printers.size() == 1) {
        object["printer"] = PrinterObject(event.printers.front());
    } else {
        for (const Printer& printer : event.printers) {
            object["printers"].push_back(PrinterObject(printer));
        }
    }
    if (event.result) {
        object["result"] = *event.result;
    }
    if (!event.problem.empty()) {
        object["problem"] = event.problem;
    }
    return JsonLine(object);
}

}  // namespace App
