#pragma once

namespace Process {

unsigned long OwnId();

}  // namespace Process
