#pragma once

#include "app/item_list.h"
#include "app/printer.h"

namespace App {

using PrinterList = ItemList<Printer>;

}  // namespace App
