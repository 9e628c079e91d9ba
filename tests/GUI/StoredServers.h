// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariantList>

namespace ZorvaneClient {
namespace Tests {

/// Where the client keeps the LAN servers.
const QString rosterFile = QStringLiteral("local_roster.txt");

/// What stands in that file; empty without one.
QVariantList storedServers();
/// Takes all LAN servers out of the roster, and the file away.
void forgetServers();

} // namespace Tests
} // namespace ZorvaneClient
