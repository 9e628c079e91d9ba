// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// The proxy that a child is told of.
struct PlayerProxy {
    QString host; ///< empty: none
    int port = 0;
    QString userName;
    QString password;

    /// What the settings say now; none if the proxy is switched off there.
    static PlayerProxy fromSettings();
};

/// Arguments of a child that plays `url` into the frame file `frameFileName`.
QStringList playerArguments(const QString &url, const QString &frameFileName,
                            const PlayerProxy &proxy);

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
