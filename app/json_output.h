#pragma once

#include <string>

#include "app/printer.h"
#include "app/vendor_survey.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

// Each is one object on one line, without the line's end. All of it is ASCII, so that no terminal
// takes a device's text for anything else; ill-formed UTF-8 becomes U+FFFD.
std::string PrinterJson(const Printer& printer);
std::string StateJson(const Printer& printer, int state);
std::string VendorJson(const PrinterUtil::VendorListReport& list, const VendorInfo& vendor,
                       const std::vector<ModuleSurvey>& modules);

}  // namespace App
