// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/items/item_list.h"
#include "app/items/printer.h"

namespace App {

using PrinterList = ItemList<Printer>;

}  // namespace App
