#include "app/ping_command.h"

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/awaiting.h"
#include "app/console.h"
#include "app/json_output.h"
#include "app/messages.h"

namespace App {

ExitStatus Ping(const Settings& settings, const std::string& address) {
    const std::function<bool()> work = [address] {
        return DeviceDiscover::PrinterNetInterface::GetInstance().CheckPing(address);
    };
    const bool answers = Await(settings, "Asking " + address, work);
    if (settings.json) {
        WriteOutput(PingJson(address, answers) + "\n");
    } else if (answers) {
        WriteOutput(address + " answers\n");
    }
    if (!answers) {
        Complain(address +
                 " does not answer.\nIs it switched on, and on this computer's network? Should "
                 "pings not be possible here:\n" +
                 AdviceToReadLog());
    }
    return answers ? kFound : kNoneFound;
}

}  // namespace App
