#include "app/table.h"

#include "app/text.h"

namespace App {

std::string Cell(const std::string& text) {
    return text.empty() ? "-" : DisplayText(text);
}

}  // namespace App
