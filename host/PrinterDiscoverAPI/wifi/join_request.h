#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/secret.h"
#include "host/PrinterDiscoverAPI/wifi/access_point.h"

namespace Host {

// What a user asked to join, checked: throws WifiProblem when no network can have that name or no
// network that pass phrase.
class JoinRequest {
public:
    JoinRequest(std::wstring_view wantedSsid, std::wstring_view givenPassPhrase);

    // The name as UTF-8, and the pass phrase.
    const std::string& Name() const { return name; }
    std::string_view PassPhrase() const { return passPhrase.View(); }

    // The strongest access point of that name that goes with the pass phrase; null when none is
    // there. Where none has the name, one whose name is no text counts by how it is shown. Throws
    // WifiProblem when all that are there want something else.
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
