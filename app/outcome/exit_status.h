#pragma once

namespace App {

// What the program tells the shell.
enum ExitStatus : int {
    kFound = 0,
    kNoneFound = 1,
    kUsage = 2,
    kCouldNotRun = 3,
};

}  // namespace App
