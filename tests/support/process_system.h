// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace Process {

unsigned long OwnId();

}  // namespace Process
