// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "app/program/messages.h"

namespace App {

// How a running scan is shown on standard output.
template <class Item>
class ScanView {
public:
    virtual ~ScanView() = default;

    // Called a few times a second. `news`: the new or changed items; `status`: the scan's status.
    virtual void Show(const std::vector<Item>& news, const std::string& status) = 0;

    // Shows a remark about the scan itself on standard error.
    virtual void Remark(const std::string& text) { Warn(text); }

    // The scan has ended.
    virtual void Finish() = 0;
};

}  // namespace App
