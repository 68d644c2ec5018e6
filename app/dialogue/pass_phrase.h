#pragma once

#include <memory>
#include <string>

#include "app/program/settings.h"
#include "base/secret.h"

namespace App {

// Where the pass phrase comes from. It is never an argument: those are for all to see.
struct PassPhraseOptions {
    std::string file;   // "-": standard input; empty: from the prompt
    bool open = false;  // the network wants none

    // Throws WrongInput when there is neither a source nor a terminal to ask on.
    void Require(const Settings& settings) const;
};

// How many bytes of it a printer can be given.
extern const std::size_t kLongestPrinterPassPhrase;

// The pass phrase of the network, never null; empty for an open network. Throws WrongInput when
// there is none, or when it cannot be one; Problem when its file cannot be read; Interrupted.
std::shared_ptr<Base::Secret> GetPassPhrase(const Settings& settings,
                                            const PassPhraseOptions& options,
                                            const std::string& network);

// Throws WrongInput when a printer cannot be given that pass phrase.
void RequirePrinterPassPhrase(const Base::Secret& passPhrase);

}  // namespace App
