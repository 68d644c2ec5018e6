// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "base/secret.h"

namespace App {

// Where the pass phrase comes from. Never from an argument: other users can see a program's
// arguments.
struct PassPhraseOptions {
    std::string file;   // "-": standard input; empty: from the prompt
    bool open = false;  // the network has no pass phrase

    // Throws WrongInput when there is neither a source nor a terminal for the prompt.
    void Require() const;
};

// The longest pass phrase that can be sent to a printer, in bytes.
extern const std::size_t kLongestPrinterPassPhrase;

// Returns the network's pass phrase: never null; empty for an open network. Throws WrongInput when
// it is missing or invalid, Problem when its file cannot be read, and Interrupted.
std::shared_ptr<Base::Secret> GetPassPhrase(const PassPhraseOptions& options,
                                            const std::string& network);

// Throws WrongInput when the pass phrase cannot be sent to a printer.
void RequirePrinterPassPhrase(const Base::Secret& passPhrase);

}  // namespace App
