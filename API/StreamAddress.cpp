// SPDX-License-Identifier: MIT
#include "API/StreamAddress.h"

#include "API/StreamQuality.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

namespace {

const QString playedCodecs = QStringLiteral("&vcodec=h264&vcodec=flv&vcodec=mpeg4&acodec=mp3");
const QString exportedCodecs = QStringLiteral("&vcodec=flv&vcodec=h264&vcodec=mpeg4&acodec=mp3");

} // namespace

// All markers are filled in one pass, so that a value that looks like a marker itself, say in
// a password, goes in as it is.
QString StreamAddress::beginning(const QString &what, int quality) const
{
    return QStringLiteral("http://%1/flv/%2?server=%3&camera=%4&q=%5&sessionId=%6")
        .arg(host, what, server, camera, QString::number(quality), session);
}

QString StreamAddress::live(int quality) const
{
    return beginning(QStringLiteral("live"), quality) + playedCodecs;
}

QString StreamAddress::archive(int quality, int speed, qint64 start) const
{
    return beginning(QStringLiteral("archive"), quality) +
           QStringLiteral("&startTime=%1&speed=%2").arg(start).arg(speed) + playedCodecs;
}

QString StreamAddress::exported(qint64 start, qint64 end) const
{
    return beginning(QStringLiteral("archive"), HighQuality) +
           QStringLiteral("&startTime=%1&endTime=%2&uploadRate=500").arg(start).arg(end) +
           exportedCodecs;
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
