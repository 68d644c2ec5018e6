// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/items/item_list.h"
#include "app/items/network.h"

namespace App {

using NetworkList = ItemList<Network>;

}  // namespace App
