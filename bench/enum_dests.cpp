#include <cups/cups.h>
int main() {
    return 0;
}
