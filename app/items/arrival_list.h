// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/items/item_list.h"
#include "app/items/usb_printer.h"

namespace App {

using ArrivalList = ItemList<Arrival>;

}  // namespace App
