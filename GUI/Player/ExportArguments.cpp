// SPDX-License-Identifier: MIT
#include "GUI/Player/ExportArguments.h"

#include "API/Camera.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

constexpr qint64 msecsPerSecond = 1000;
const QLatin1String dateFormat("dd.MM.yy");
const QLatin1String timeFormat("hh.mm.ss");

qint64 wholeSecondsInMsecs(const QDateTime &time)
{
    return API::toEpochSeconds(time) * msecsPerSecond;
}

/// The one that takes the camera's video as it is.
QString containerOf(const API::Camera &camera)
{
    return camera.vcodec() == QLatin1String("h264") ? QStringLiteral("mp4") : QStringLiteral("avi");
}

} // namespace

qint64 recordedMsecs(const QList<API::ArchiveRecord> &records, const QDateTime &start,
                     const QDateTime &end)
{
    qint64 sum = 0;
    for (const API::ArchiveRecord &record : records) {
        if (record.start >= end)
            break;
        if (start < record.end)
            sum += qMax(record.start, start).msecsTo(qMin(record.end, end));
    }
    return sum;
}

QString exportFileName(const API::Camera &camera, const QDateTime &start, const QDateTime &end)
{
    return camera.host() + QLatin1String(" - ") + camera.name() + QLatin1Char(' ') +
           start.toString(dateFormat) + QLatin1Char(' ') + start.toString(timeFormat) +
           QLatin1Char('-') + end.toString(timeFormat) + QLatin1Char('.') + containerOf(camera);
}

QStringList exportArguments(const API::Camera &camera, const QDateTime &start, const QDateTime &end,
                            qint64 msecs, const QString &path)
{
    return {QStringLiteral("export"),
            camera.exportUrl(wholeSecondsInMsecs(start), wholeSecondsInMsecs(end)),
            containerOf(camera), QString::number(msecs), path};
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
