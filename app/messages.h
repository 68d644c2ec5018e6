#pragma once

#include <cstddef>
#include <string>

namespace App {

// To standard error, in the program's name. The lines may hold a device's text.
void Complain(const std::string& text);
void Warn(const std::string& text);

// "1 printer", "2 printers".
std::string CountOfPrinters(std::size_t count);

// What to do when a scan has found less than expected.
std::string AdviceAfterScan();

}  // namespace App
