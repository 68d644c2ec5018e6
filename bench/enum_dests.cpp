// SPDX-License-Identifier: Apache-2.0

// Lists network printers with cupsEnumDests, as a program that uses CUPS would: one line each, as
// they come. Usage: bench_enum_dests PRINTERS; ends when that many are found, or after 30 seconds.

#include <cups/cups.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kMilliseconds = 30000;

int Report(void* wanted, unsigned flags, cups_dest_t* printer) {
    if ((flags & (CUPS_DEST_FLAGS_ERROR | CUPS_DEST_FLAGS_REMOVED)) != 0) {
        return 1;
    }
    const char* const model =
        cupsGetOption("printer-make-and-model", printer->num_options, printer->options);
    const char* const uri = cupsGetOption("device-uri", printer->num_options, printer->options);
    std::printf("%s\t%s\t%s\n", printer->name, model == nullptr ? "" : model,
                uri == nullptr ? "" : uri);
    std::fflush(stdout);
    int& left = *static_cast<int*>(wanted);
    --left;
    return left > 0 ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
    int wanted = argc == 2 ? std::atoi(argv[1]) : 0;
    if (wanted <= 0) {
        std::fprintf(stderr, "usage: %s PRINTERS\n", argv[0]);
        return 2;
    }
    return cupsEnumDests(CUPS_DEST_FLAGS_NONE, kMilliseconds, nullptr, 0, 0, Report, &wanted) == 1
               ? 0
               : 1;
}
