#include "app/json_output.h"

#include <array>
#include <nlohmann/json.hpp>

namespace App {

namespace {

using Json = nlohmann::ordered_json;

std::string Line(const Json& object) {
    return object.dump(-1, ' ', true, Json::error_handler_t::replace);
}

// The kind of service. What its number stands for is each vendor's own affair; it is known of one.
Json Service(const Printer& printer) {
    constexpr std::array names{"ipp", "ipps", "pdl-datastream", "printer"};
    const bool named =
        printer.vendor == "driverless" && printer.service >= 1 && printer.service <= names.size();
    return named ? Json(names[printer.service - 1U]) : Json(printer.service);
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

std::string VendorJson(const PrinterUtil::VendorListReport& list, const VendorInfo& vendor,
                       const std::vector<ModuleSurvey>& modules) {
    Json object{{"productId", vendor.productId},
                {"vendorList", list.path},
                {"moduleFolder", list.moduleFolder},
                {"modules", Json::array()}};
    for (const ModuleSurvey& module : modules) {
        object["modules"].push_back(ModuleObject(module));
    }
    return Line(object);
}

}  // namespace App
