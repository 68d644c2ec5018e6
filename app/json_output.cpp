#include "app/json_output.h"

#include <array>
#include <nlohmann/json.hpp>

namespace App {

namespace {

using Json = nlohmann::ordered_json;

std::string Line(const Json& object) {
    return object.dump(-1, ' ', true, Json::error_handler_t::replace);
}

// The kinds of service by the numbers that stand for them in a device record.
Json ServiceName(std::uint16_t service) {
    constexpr std::array names{"ipp", "ipps", "pdl-datastream", "printer"};
    return service >= 1 && service <= names.size() ? Json(names[service - 1U]) : Json();
}

Json PrinterObject(const Printer& printer) {
    return {{"serialNumber", printer.serialNumber},
            {"makeAndModel", printer.makeAndModel},
            {"address", printer.address},
            {"port", printer.port},
            {"vendor", printer.vendor},
            {"resource", printer.resource},
            {"service", ServiceName(printer.service)}};
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
            {"entryPoints", entryPoints}};
}

}  // namespace

std::string PrinterJson(const Printer& printer) {
    return Line(PrinterObject(printer));
}

std::string StateJson(const Printer& printer, int state) {
    Json object = PrinterObject(printer);
    object["ready"] = state == 1;
    object["state"] = state;
    return Line(object);
}

std::string VendorJson(const VendorInfo& vendor, const std::vector<ModuleSurvey>& modules) {
    Json object{{"productId", vendor.productId}, {"modules", Json::array()}};
    for (const ModuleSurvey& module : modules) {
        object["modules"].push_back(ModuleObject(module));
    }
    return Line(object);
}

}  // namespace App
