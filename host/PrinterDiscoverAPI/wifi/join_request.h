// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/secret.h"
#include "host/PrinterDiscoverAPI/wifi/access_point.h"

namespace Host {

// A checked request to join a network. The constructor throws WifiProblem when the name or the pass
// phrase is not valid for any network.
class JoinRequest {
public:
    JoinRequest(std::wstring_view wantedSsid, std::wstring_view givenPassPhrase);

    // The name as UTF-8, and the pass phrase.
    const std::string& Name() const { return name; }
    std::string_view PassPhrase() const { return passPhrase.View(); }

    // The strongest access point with this name that fits the pass phrase; null when none has the
    // name. If no name matches exactly, a name that is not text matches by its displayed form.
    // Throws WifiProblem when all access points with the name need a different secret.
    const AccessPoint* Choose(const std::vector<AccessPoint>& accessPoints) const;

    // `text` without the pass phrase.
    std::string WithoutSecret(std::string_view text) const;

private:
    bool HasName(const AccessPoint& accessPoint) const;
    bool IsShownAlike(const AccessPoint& accessPoint) const;

    std::wstring ssid;
    std::string name;
    Base::Secret passPhrase;
};

}  // namespace Host
