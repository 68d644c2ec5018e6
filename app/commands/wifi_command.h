// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "app/dialogue/pass_phrase.h"
#include "app/outcome/exit_status.h"
#include "app/program/settings.h"

namespace App {

// Lists the networks in range; kNoneFound when there are none.
ExitStatus WifiList(const Settings& settings);

// Lists the networks in range that a printer can be put on; kNoneFound when there are none.
ExitStatus WifiOffer(const Settings& settings);

// Shows the network that the host is joined to; kNoneFound when there is none.
ExitStatus WifiCurrent(const Settings& settings);

// Joins a network; kNoneFound when that fails.
ExitStatus WifiJoin(const Settings& settings, const std::string& network,
                    const PassPhraseOptions& passPhrase);

}  // namespace App
