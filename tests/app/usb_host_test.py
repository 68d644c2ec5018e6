# SPDX-License-Identifier: Apache-2.0
"""What the tests of commands for printers on USB share: a scripted PrinterAdapter beside the program
too, and vendors that list USB identifiers."""

import os
import shutil

from host_test import HostTest

SCRIPTED_ADAPTER = os.environ["DEVICEDISCOVER_SCRIPTED_ADAPTER"]
USB_ID = "VID_1234&PID_ABCD"
OTHER_USB_ID = "VID_1234&PID_ABCE"


def vendor(module="scripted_all", product_id="scripted", usb_ids=USB_ID, scan_module=None):
    return dict(productId=product_id, vendorName=module, scanModuleName=scan_module or module,
                usbIdList=usb_ids)


def usb_device(serial, model="Fake 1000", vendor="scripted", place="usb:1-4"):
    """A printer as its vendor reports it on USB."""
    return f'device "{serial}" "{vendor}" "{model}" "{place}" "" 0 5'


def port(usb_id=USB_ID, devices=1):
    """Printers that are plugged in."""
    return f'port "{usb_id}" {devices} 1'


def change(usb_id=USB_ID, state=1, after=100):
    return f'change {after} {state} "{usb_id}"'


def appear(usb_id=USB_ID, devices=1, after=0):
    """That many are plugged in from then on, and nobody is told; with 0 ms at the front, just before the
    watch starts."""
    return f'appear {after} "{usb_id}" {devices} 1'


def installed(serial, model="Fake 1000", connect_type=1):
    return f'printer "{serial}" "{model}" {connect_type}'


class UsbTest(HostTest):
    def setUp(self):
        super().setUp()
        self.list_file = self.vendor_list([vendor()])
        replaced = self.path(os.path.join("program", os.path.basename(SCRIPTED_ADAPTER)))
        if os.path.exists(replaced):
            os.remove(replaced)
        shutil.copy(SCRIPTED_ADAPTER, replaced)
