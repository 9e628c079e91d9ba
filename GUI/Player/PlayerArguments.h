// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include "App/ProxySettings.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// Arguments of a child that plays `url` into the frame file `frameFileName`. A proxy without a
/// host is none.
QStringList playerArguments(const QString &url, const QString &frameFileName,
                            const App::ProxySettings &proxy);

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
