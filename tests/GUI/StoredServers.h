// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

/// Where the client keeps the LAN servers.
const QString rosterFile = "local_roster.txt"_s;

/// What stands in that file; empty without one.
QVariantList storedServers();
/// Takes all LAN servers out of the roster, and the file away.
void forgetServers();

} // namespace ZorvaneClient::Tests
