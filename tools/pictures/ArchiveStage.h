// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>

#include "API/Types.h"
#include "GUI/ArchiveControlPanel.h"

namespace ZorvaneClient::Pictures {

// What the pictures of the archive and those of an export set up alike.

/// The day with records, and a moment of it, "hh:mm".
QDate yesterday();
QDateTime at(const char *time);

/// The controls of date, time and zoom.
GUI::ArchiveControlPanel *archivePanel();

/// Returns when the strip has them.
void showRecordsOf(const API::CameraPtr &camera);
/// Returns when all tiles show the archive.
void playFrom(const QDateTime &moment);

} // namespace ZorvaneClient::Pictures
