// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DeviceDiscover/DeviceDiscover.h"
#include "tests/support/recording_log.h"
#include "tests/support/scripted_module.h"
#include "tests/support/scripted_vendors.h"

// A test of the broker between a recording logger and scripted vendors.
class BrokerTest : public testing::Test {
protected:
    // Every stream that reached the logger must have been in order.
    void TearDown() override;
};

using Lines = std::vector<std::string>;

// A log line as tests compare it: "<level> <text>". Characters beyond ASCII appear as <hex>.
std::string LineText(const RecordingLog::Line& line);

// The line with that level, message with its values, and location inside PrinterDeviceDiscoverSdk.
std::string LineIs(int level, const std::string& message, const std::string& location);

// The lines logged since they were last taken: all of them, or those of the calling thread (lines
// of others are then lost).
std::vector<std::string> TakeLines();
std::vector<std::string> TakeOwnLines();

// The lines that binding a vendor with a complete scan module logs, and one that lacks everything.
std::vector<std::string> BindingLines(const std::string& productId);
std::vector<std::string> BindingLinesWithoutAnything(const std::string& productId);

Lines operator+(Lines first, const Lines& second);

// A device with that model and recognisable bytes in every other field, up to their last.
PrinterDeviceDiscoverSdk::DeviceInfo DeviceOf(const std::string& modelID);

// A network of that name, with recognisable bytes behind its texts.
PrinterDeviceDiscoverSdk::WifiConfigInfo NetworkOf(const std::string& ssid);

// The bytes of a plain record.
template <class Record>
std::string BytesOf(const Record& record) {
    return {reinterpret_cast<const char*>(&record), sizeof record};
}
std::string BytesOf(const ScriptedVendor::Call& call);

// Fills a field with as much of `text` as it takes, and zero bytes behind it.
template <std::size_t Width>
void SetField(char (&field)[Width], const std::string& text) {
    for (std::size_t at = 0; at < Width; ++at) {
        field[at] = at < text.size() ? text[at] : '\0';
    }
}

// The same records in the vendors' family.
VendorSdk::DeviceInfo VendorDeviceOf(const std::string& modelID);
VendorSdk::WifiConfigInfo VendorNetworkOf(const std::string& ssid);
