// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace Host {

// One use of the system bus. Process exit destroys objects that the bus library needs: from then on
// no use can begin, and running uses are cut off and waited for.
class BusUse {
public:
    // Throws WifiProblem when the process is ending.
    BusUse();
    ~BusUse();
    BusUse(const BusUse&) = delete;
    BusUse& operator=(const BusUse&) = delete;

    // Remembers the connection to shut down at exit; -1 for none.
    void Of(int connectionDescriptor);

private:
    int descriptor = -1;
};

}  // namespace Host
