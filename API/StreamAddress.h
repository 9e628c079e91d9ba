// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// Where the streams of one camera are. No value is percent-encoded in an address.
struct StreamAddress {
    QString host; ///< may carry ":port"
    QString server;
    QString camera;
    QString session;

    QString live(int quality) const;
    /// `start` in seconds since the epoch.
    QString archive(int quality, int speed, qint64 start) const;
    /// Both ends in milliseconds since the epoch.
    QString exported(qint64 start, qint64 end) const;

private:
    QString beginning(const QString &what, int quality) const;
};

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
