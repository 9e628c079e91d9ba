// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// What each LAN server calls itself in a request or a stream address.
inline const QString localServerNumber = QStringLiteral("1");

/// Who is asked about a camera: the service while `host` is empty, else a LAN server.
struct Endpoint {
    QString host;
    int port = 0;
    QString password; ///< what a LAN server takes in the place of a session

    bool isService() const { return host.isEmpty(); }
};

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
