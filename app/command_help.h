// SPDX-License-Identifier: Apache-2.0

#pragma once

// The texts at the end of each command's help.

namespace App::Help {

inline constexpr const char* kExitStatuses =
    "Exit status: 0 found, 1 none found, 2 wrong arguments, 3 could not run.\n"
    "With --json the cause of 3 is an object, too, with the one key \"problem\".";

inline constexpr const char* kApplication = R"(Examples:
  devicediscover scan                     look for printers for 5 seconds
  devicediscover scan --json --watch      one JSON object a line, until Ctrl-C
  devicediscover state CN12345678         would that printer take a job?
  devicediscover vendors                  what can each vendor's modules do?
  devicediscover usb ports                which printers are plugged in?
  devicediscover setup                    put a new printer on your Wi-Fi network
`devicediscover COMMAND --help` has more on each command.

)";

inline constexpr const char* kScan = R"(Examples:
  devicediscover scan                     a live table for 5 seconds
  devicediscover scan --seconds 30        give slow printers more time
  devicediscover scan --watch             until Ctrl-C
  devicediscover scan --json | jq .address
  devicediscover scan --vendors ./vendors.json --log-level debug

On a terminal the printers stand in a table that is drawn anew as the scan goes
on. Elsewhere each is a line, written when it is found: serial number, make and
model, address, port and vendor, separated by tabs.

Printers may share a serial number, so the address tells them apart: one that
changes its address while the scan goes on is shown at both.

A vendor that cannot look says why on standard error. When none can, or none
looks any more, the scan ends at once with exit status 3; what was found before
counts, but not with --watch.

A vendor that takes more than 3 seconds to stop its scan is named and left
behind. Ctrl-C stops the scan early; a second one ends the program at once.

)";

inline constexpr const char* kState = R"(Examples:
  devicediscover state CN12345678         look for it, then ask its vendor
  devicediscover state CN12345678 --seconds 30 --json
  devicediscover state CN12345678 --address 192.168.1.20

The exit status is 0 when the printer was found, whatever its state. Several of
that serial number are named, and the exit status is 1: --address says which is
meant, the first that is found there.

)";

inline constexpr const char* kVendors = R"(Examples:
  devicediscover vendors
  devicediscover vendors --vendors ./vendors.json
  devicediscover vendors --json | jq '.modules[].problem'

Without --vendors the list is the one that the environment variable
DEVICEDISCOVER_VENDORS names, else vendors.json in your configuration folder,
else the one beside the library. The exit status is 0 when at least one module
can be loaded, and 1 when a module that was loaded exports no entry point at all;
names that only look like one are told.

)";

inline constexpr const char* kWifi = R"(Examples:
  devicediscover wifi list                networks in range of this computer
  devicediscover wifi current             which of them it is joined to
  devicediscover wifi join Office         asks for the pass phrase
`devicediscover wifi COMMAND --help` has more on each.

)";

inline constexpr const char* kWifiList = R"(Examples:
  devicediscover wifi list
  devicediscover wifi list --json | jq -r .network

Each network with its signal (0 to 100), how it is protected, and whether a
printer can be put on it. Elsewhere than on a terminal these are separated by
tabs. A network that hides its name is shown as -. Exit status 1: none in range.

)";

inline constexpr const char* kWifiOffer = R"(Examples:
  devicediscover wifi offer               the networks to offer for a printer

As `devicediscover wifi list`, without the networks that a printer cannot be put
on. Exit status 1: there is none.

)";

inline constexpr const char* kWifiCurrent = R"(Examples:
  devicediscover wifi current
  devicediscover wifi current --json | jq -r .network

The network's name, the access point's hardware address and this computer's
interface, separated by tabs. Exit status 1: joined to none, 3: not known, as
the system's Wi-Fi service does not run or does not answer.

)";

inline constexpr const char* kPassPhrase =
    R"(The pass phrase is asked for on the terminal, where it does not show, or read
with --pass-phrase-file from a file with it as its one line or, with -, from a
line of standard input. It is never an argument, which others could see, and
never shown.

)";

inline constexpr const char* kWifiJoin = R"(Examples:
  devicediscover wifi join Office
  devicediscover wifi join Office --pass-phrase-file office.txt
  pass show office | devicediscover wifi join Office --pass-phrase-file -
  devicediscover wifi join Guests --open

Exit status 1: not joined. Then, and after Ctrl-C, this computer goes back to the
network it was on, if that is open or saved, and in range.

)";

inline constexpr const char* kPing = R"(Examples:
  devicediscover ping 192.168.1.20

A few pings of a tenth of a second; the first answer counts. Exit status 1: no
answer. 3: this computer, or this user, cannot send pings.

)";

inline constexpr const char* kAp = R"(Examples:
  devicediscover ap info                  whose access point is this?
  devicediscover ap scan                  which networks does the printer report?
  devicediscover ap configure --network Office
  devicediscover ap check CN12345678      is it on the local network now?
`devicediscover ap COMMAND --help` has more on each. `devicediscover setup` does
it all in one go.

)";

inline constexpr const char* kApScan = R"(Examples:
  devicediscover ap scan                  a live table for 5 seconds
  devicediscover ap scan --json --watch   one JSON object a line, until Ctrl-C

This computer must be joined to the printer's own network. The signal is as the
printer's vendor measures it. Exit status 1: no network, or no such printer,
3: the vendor could not look for networks.

)";

inline constexpr const char* kApConfigure = R"(Examples:
  devicediscover ap configure --network Office
  devicediscover ap configure --network Office --pass-phrase-file office.txt

This computer must be joined to the printer's own network. Exit status 1: the
printer was not put on the network, or it closed its own network and nothing
shows whether it joined.

)";

inline constexpr const char* kApInfo = R"(Examples:
  devicediscover ap info --json

The printer whose own network this computer is joined to. Exit status 1: none.

)";

inline constexpr const char* kApCheck = R"(Examples:
  devicediscover ap check CN12345678      asks each vendor in turn
  devicediscover ap check CN12345678 --vendor driverless
  devicediscover ap check                 the printer whose network this is

A UUID works too, in the place of the serial number, where the vendor knows the
printer by it, as driverless does.

Exit status 1: the printer is not on the local network, 3: it could not be
looked for.

)";

inline constexpr const char* kUsb = R"(Examples:
  devicediscover usb list                 which of them is not on the network?
  devicediscover usb ports                what is plugged in?
  devicediscover usb watch                what is plugged in from now on?
  devicediscover usb networks CN12345678  which networks does that one see?
  devicediscover usb configure CN12345678 --network Office
`devicediscover usb COMMAND --help` has more on each. `devicediscover setup
--usb` puts a printer on the network and finds it there.

)";

inline constexpr const char* kUsbList = R"(Examples:
  devicediscover usb list
  devicediscover usb list --json | jq 'select(.onNetwork == false)'

The USB printers that are installed on this computer, plugged in or not: serial
number, model, and whether the printer is on the network too.
yes: this computer has it twice, a printer with that serial number is installed
over the network too. no: none of the installed network printers is known to
have that serial number; most print spoolers do not tell it of network printers,
that of Windows never does. - and null: the USB printer's own is not known.
Elsewhere than on a terminal these are separated by tabs. Exit status 1: none is
installed; 3: the print spooler does not answer.

)";

inline constexpr const char* kUsbPorts = R"(Examples:
  devicediscover usb ports
  devicediscover usb ports --json | jq -r .serialNumber

Serial number, make and model, place on USB, and vendor, as the printer's vendor
reports them. A printer without a serial number may have its place instead,
usb:1-4 for one, in JSON too: that changes when it is plugged in elsewhere.
Printers that are plugged in and that no vendor reports are named on standard
error, with the USB identifier to put into the vendor list. Exit status 1: none
is plugged in that a vendor reports; 3: the system cannot say what is.

)";

inline constexpr const char* kUsbWatch = R"(Examples:
  devicediscover usb watch                until Ctrl-C
  devicediscover usb watch --seconds 60
  devicediscover usb watch --json | jq -r .serialNumber

Each printer about a second after it is plugged in: the time (in JSON that of
UTC), serial number, make and model, place on USB, and vendor. One that is
plugged in again is shown again, and so are the others of its model. Those that
were there before are not shown, only counted on standard error. A model that no
vendor reports is named at the end. When the system's device service is silent
that is said, and what the kernel itself tells is shown. A vendor that does not
answer within --vendor-seconds is named. Exit status 1: none was plugged in; 3:
it cannot be watched, or none was reported and a vendor has not answered.

)";

inline constexpr const char* kUsbNetworks = R"(Examples:
  devicediscover usb networks             the only printer need not be named
  devicediscover usb networks CN12345678
  devicediscover usb networks usb:1-4     the one that is plugged in there
  devicediscover usb networks --json | jq -r .network

Name and signal, separated by tabs elsewhere than on a terminal. The signal is
as the printer's vendor measures it; vendor driverless reports the networks in
reach of this computer's own Wi-Fi. `devicediscover usb ports` shows serial
numbers and places. Exit status 1: no network, or no such printer.

)";

inline constexpr const char* kUsbConfigure = R"(Examples:
  devicediscover usb configure CN12345678 --network Office
  devicediscover usb configure --network Office --pass-phrase-file office.txt
  devicediscover usb configure usb:1-4 --network Guests --open

Without a serial number or place it is the only printer that is plugged in;
`devicediscover usb ports` shows which there are. `devicediscover setup --usb`
also finds the printer on the network afterwards.

Exit status 1: the printer was not put on the network, or there is no such
printer.

)";

inline constexpr const char* kSetup = R"(Examples:
  devicediscover setup                    asks for network and pass phrase
  devicediscover setup --network Office --pass-phrase-file office.txt --json
  devicediscover setup --no-rejoin        this computer is on that network anyway
  devicediscover setup --usb              the printer is on a USB cable
  devicediscover setup --usb CN12345678   this one of them

Without --usb, join this computer to the new printer's own network first:
`devicediscover wifi list` shows it, `devicediscover wifi join NAME` joins it.
With --usb plug the printer in; this computer stays on its network, which should
be the one that the printer is to be on.

The steps are: which printer; which network, picked from a list on a terminal;
its pass phrase; putting the printer on it; joining this computer to it; finding
the printer there. Should one fail, it says what to do. Ctrl-C ends it between
and within steps. When one of the last two does not succeed, this computer goes
back to the network it was on, if that is open or saved, and in range. With
--json each step is an object when it starts and when it ends, and what is asked
goes to standard error.

Printers may share a serial number. The vendor tells whether the very one is
there; where more than one of that number was found, all their places are named,
in JSON as "printers" in the place of "printer". A printer may have another
serial number there than on USB: its vendor's word is enough, but then no place
is told, and JSON has neither.

Exit status: 0 the printer was found on the network, 1 a step failed or was
interrupted, 2 wrong arguments or a pass phrase too long for a printer's record,
3 could not run: no vendor that could do it, nobody who looks for the printer any
more, or a file that cannot be read.
)";

}  // namespace App::Help
