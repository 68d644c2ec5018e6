// SPDX-License-Identifier: Apache-2.0

#include "app/running/timed_out.h"

#include <fmt/format.h>

#include <utility>

namespace App {

namespace {

std::string Text(const std::string& vendors, std::chrono::duration<double> limit) {
    const std::string what = vendors.empty() ? "there was no answer" : "no answer from " + vendors;
    return fmt::format(
        "{} within {:g} s; the program no longer waits for it.\nTry again, or wait longer with "
        "--vendor-seconds N{}",
        what, limit.count(),
        vendors.empty() ? "." : "; a vendor that never answers needs another module.");
}

}  // namespace

TimedOut::TimedOut(std::string names, std::chrono::duration<double> limit)
    : Problem(Text(names, limit)), vendors(std::move(names)) {}

}  // namespace App
