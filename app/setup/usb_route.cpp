// SPDX-License-Identifier: Apache-2.0

#include <utility>

#include "app/library/usb/usb_device.h"
#include "app/setup/network_choice.h"
#include "app/setup/setup_route.h"

namespace App {

namespace {

class ThroughUsb : public SetupRoute {
public:
    explicit ThroughUsb(std::string name) : serialNumber(std::move(name)) {}

    Printer FindPrinter() override {
        try {
            printer = FindPluggedIn(serialNumber);
        } catch (const NoUsbPrinter& none) {
            throw StepFailed(std::string(none.what()) +
                             "\nThen start the set-up again; nothing was changed.");
        }
        if (printer->serialNumber.empty()) {
            throw StepFailed(
                "the printer has no serial number and could not be found again afterwards.\n"
                "`devicediscover usb configure` puts it on a network without looking for it "
                "there.");
        }
        return *printer;
    }

    std::string PickNetwork() override {
        return ChooseNetwork([this] { return NetworksSeenBy(*printer, 0).networks; }, {});
    }

    int Configure(const std::string& network,
                  const std::shared_ptr<Base::Secret>& passPhrase) override {
        return ConfigureNetwork(*printer, network, passPhrase);
    }

    const char* ConfigureEntryPoint() const override { return "PrinterUSBNetConfigEvent"; }

    Failure ExplainConfigure(int result) override {
        return {UsbExplanation(*printer, result, ConfigureEntryPoint()),
                "Check the network's name and pass phrase, and that the printer is still plugged "
                "in, and start the\nset-up again."};
    }

    bool LeavesNetwork() const override { return false; }

private:
    const std::string serialNumber;
    std::optional<UsbPrinter> printer;
};

}  // namespace

std::unique_ptr<SetupRoute> UsbRoute(const std::string& serialNumber) {
    return std::make_unique<ThroughUsb>(serialNumber);
}

}  // namespace App
