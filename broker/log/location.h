// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

#include "platform/compiler.h"

namespace Broker {

// The origin of a log line: the qualified name of the function, in the form of MSVC's function
// macro.
struct Location {
    std::string_view function;
    std::string_view suffix;  // for a lambda: its name, after that of the enclosing function
};

// Derives the location from a compiler's text of a function's signature: removes return type,
// parameters and qualifiers, and writes a lambda as "::<lambda_1>::operator ()". MSVC's text is
// unchanged. The result points into `signature`.
constexpr Location LocationOf(std::string_view signature) {
    constexpr std::string_view msvcLambdaEnd = ">::operator ()";
    if (signature.ends_with(msvcLambdaEnd)) {
        return {signature, {}};
    }
    std::string_view suffix;
    for (std::string_view lambda :
         {std::string_view("::<lambda("), std::string_view("::(anonymous class)::"),
          std::string_view("::(lambda at ")}) {
        if (const auto at = signature.find(lambda); at != std::string_view::npos) {
            signature = signature.substr(0, at);
            suffix = "::<lambda_1>::operator ()";
            break;
        }
    }
    // The parameter list is the last group of parentheses; it may contain template parameters.
    if (const auto close = signature.rfind(')'); close != std::string_view::npos) {
        auto open = close;
        for (int depth = 1; depth > 0 && open > 0;) {
            --open;
            depth += signature[open] == ')' ? 1 : signature[open] == '(' ? -1 : 0;
        }
        signature = signature.substr(0, open);
    }
    // The name follows the last blank outside of template arguments and parentheses.
    auto begin = signature.size();
    for (int depth = 0; begin > 0; --begin) {
        const char c = signature[begin - 1];
        depth += c == '>' || c == ')' ? 1 : c == '<' || c == '(' ? -1 : 0;
        if (depth == 0 && (c == ' ' || c == '*' || c == '&')) {
            break;
        }
    }
    return {signature.substr(begin), suffix};
}

// LocationOf, always at compile time.
consteval Location CompiledLocationOf(std::string_view signature) {
    return LocationOf(signature);
}

}  // namespace Broker

// The location of the enclosing function.
#define HERE ::Broker::CompiledLocationOf(PLATFORM_FUNCTION_SIGNATURE)
