// SPDX-License-Identifier: Apache-2.0

#include "app/library/access_point_printer.h"
#include "app/library/host_wifi.h"
#include "app/setup/network_choice.h"
#include "app/setup/setup_route.h"

namespace App {

namespace {

class ThroughAccessPoint : public SetupRoute {
public:
    explicit ThroughAccessPoint(std::chrono::duration<double> time) : listTime(time) {}

    Printer FindPrinter() override {
        const DeviceAnswer answer = AskForDevice();
        if (answer.result != 0) {
            throw StepFailed(Explanation(answer.result, "GetDeviceInfoByNet") +
                                 "\nThen start the set-up again; nothing was changed.",
                             answer.result);
        }
        Printer printer(answer.device);
        if (printer.serialNumber.empty()) {
            throw StepFailed(
                "the printer has no serial number and could not be found again afterwards.\n"
                "`devicediscover ap configure` puts it on a network without looking for it there.");
        }
        return printer;
    }

    std::string PickNetwork() override {
        return ChooseNetwork([this] { return SeenFromAccessPoint(listTime); },
                             CurrentAccessPoint().network);
    }

    int Configure(const std::string& network,
                  const std::shared_ptr<Base::Secret>& passPhrase) override {
        return ConfigureNetwork(network, passPhrase);
    }

    const char* ConfigureEntryPoint() const override { return "PrinterAPNetConfigEvent"; }

    Failure ExplainConfigure(int result) override {
        return {Explanation(result, ConfigureEntryPoint()),
                "Check the network's name and pass phrase. If this computer has left the printer's "
                "own network, join\nit again. Then start the set-up again."};
    }

    bool LeavesNetwork() const override { return true; }

private:
    const std::chrono::duration<double> listTime;
};

}  // namespace

std::unique_ptr<SetupRoute> AccessPointRoute(std::chrono::duration<double> listTime) {
    return std::make_unique<ThroughAccessPoint>(listTime);
}

}  // namespace App
