#pragma once

#include "app/item_list.h"
#include "app/network.h"

namespace App {

using NetworkList = ItemList<Network>;

}  // namespace App
