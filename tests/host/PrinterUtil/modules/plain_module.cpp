#include "VendorSdk/entry_points.h"

VENDORSDK_EXPORT(StopDeviceScan);

int StopDeviceScan() {
    return 17;
}
