// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include "API/ArchiveRecord.h"

namespace ZorvaneClient {

namespace API {
class Camera;
}

namespace GUI {
namespace Player {
namespace Internal {

/// How much of the span is recorded, in milliseconds. The first of `records` that begins after
/// the span is the last to be looked at.
qint64 recordedMsecs(const QList<API::ArchiveRecord> &records, const QDateTime &start,
                     const QDateTime &end);

/// Host, camera, date and span, with the container of the camera's video as suffix.
QString exportFileName(const API::Camera &camera, const QDateTime &start, const QDateTime &end);

/// Arguments of a child that writes `msecs` of recorded video into the file at `path`.
QStringList exportArguments(const API::Camera &camera, const QDateTime &start, const QDateTime &end,
                            qint64 msecs, const QString &path);

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
