#pragma once

#include "app/item_list.h"
#include "app/usb_printer.h"

namespace App {

using ArrivalList = ItemList<Arrival>;

}  // namespace App
