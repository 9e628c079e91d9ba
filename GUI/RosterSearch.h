// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QWidget;

namespace ZorvaneClient {
namespace GUI {

class ServerWidget;

/// Marks what has `name` in it. A server of that name stays open or closed; any other is opened
/// for a camera of that name, and closed without one. What was open before is kept.
void searchServer(ServerWidget *server, const QString &name);

/// The uppermost that has `name` in it, heading or card; null if there is none.
QWidget *firstFound(const ServerWidget *server, const QString &name);

/// Takes the marks away and opens what was open before the search.
void endSearch(ServerWidget *server);

} // namespace GUI
} // namespace ZorvaneClient
