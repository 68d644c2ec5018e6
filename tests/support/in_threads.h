// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>

// Runs `work` on `count` threads at once, each with its number, and waits for all of them.
void InThreads(int count, const std::function<void(int)>& work);
