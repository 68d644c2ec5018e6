// SPDX-License-Identifier: Apache-2.0

#include "app/commands/commands.h"

#include "app/commands/ap_command.h"
#include "app/commands/common_options.h"
#include "app/commands/ping_command.h"
#include "app/commands/scan_command.h"
#include "app/commands/setup_command.h"
#include "app/commands/state_command.h"
#include "app/commands/usb_command.h"
#include "app/commands/vendors_command.h"
#include "app/commands/wifi_command.h"

namespace App {

namespace {

void AddSettingsToAll(Command& command, Settings& settings) {
    if (command.run) {
        AddSettings(command, settings);
    }
    for (Command& inner : command.commands) {
        AddSettingsToAll(inner, settings);
    }
}

}  // namespace

Command ProgramCommand(Settings& settings) {
    Command program{
        .name = "devicediscover",
        .summary = "Finds printers and puts them on a network, through their vendors' modules.",
        .examples = {{"scan", "look for printers for 5 seconds"},
                     {"scan --json --watch", "one JSON object per line, until Ctrl-C"},
                     {"state CN12345678", "can that printer take a job?"},
                     {"vendors", "what can each vendor's modules do?"},
                     {"usb ports", "which printers are plugged in?"},
                     {"setup", "put a new printer on your Wi-Fi network"}},
        .exitTexts = ExitTexts("found or done", "not found or not done"),
        .commands = {ScanCommand(), StateCommand(), VendorsCommand(), WifiCommand(), PingCommand(),
                     AccessPointCommand(), UsbCommand(), SetupCommand()}};
    AddSettingsToAll(program, settings);
    return program;
}

}  // namespace App
