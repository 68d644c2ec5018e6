#pragma once

namespace Host {

// One use of the system bus. The process may end meanwhile, which takes down what the bus library
// stands on: from then on no use begins, and those under way are cut off and awaited.
class BusUse {
public:
    // Throws WifiProblem when the process is ending.
    BusUse();
    ~BusUse();
    BusUse(const BusUse&) = delete;
    BusUse& operator=(const BusUse&) = delete;

    // Says which connection is used, for it to be cut; -1: none, any more.
    void Of(int connectionDescriptor);

private:
    int descriptor = -1;
};

}  // namespace Host
