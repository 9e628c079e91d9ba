// SPDX-License-Identifier: MIT
#pragma once

#include <QPixmap>
#include <QString>

namespace ZorvaneClient {
namespace GUI {

/// The icon of a resource path in the density of the screens: a pixmap made of the path alone
/// is always the small form. Pixmaps are shared. An empty path gives a null pixmap.
QPixmap iconPixmap(const QString &path);

} // namespace GUI
} // namespace ZorvaneClient
