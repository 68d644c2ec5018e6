#pragma once

#include <string>

#include "app/dialogue/pass_phrase.h"
#include "app/outcome/exit_status.h"
#include "app/program/settings.h"

namespace App {

// The networks in range; kNoneFound when there are none.
ExitStatus WifiList(const Settings& settings);

// Those of them that a printer can be put on.
ExitStatus WifiOffer(const Settings& settings);

// The network that the host is joined to; kNoneFound when it is joined to none.
ExitStatus WifiCurrent(const Settings& settings);

// Joins a network; kNoneFound when that fails.
ExitStatus WifiJoin(const Settings& settings, const std::string& network,
                    const PassPhraseOptions& passPhrase);

}  // namespace App
