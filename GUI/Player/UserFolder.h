// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QImage>
#include <QStandardPaths>
#include <QString>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// The user's folder of pictures or films, made with its parents if it is missing. What keeps it
/// from being made is logged; whoever writes into it fails then.
QDir userFolder(QStandardPaths::StandardLocation location);

/// Writes a PNG file. Empty, or why the file is not there or not whole.
QString writePicture(const QImage &picture, const QString &path);

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
