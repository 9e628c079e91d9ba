// SPDX-License-Identifier: MIT
#pragma once

#include "server/Options.h"

namespace ZorvaneServer {

/// Does what the command line asks for. The program's exit code.
int runCommand(const Options &options);

} // namespace ZorvaneServer
