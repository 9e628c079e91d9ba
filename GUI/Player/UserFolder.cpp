// SPDX-License-Identifier: MIT
#include "GUI/Player/UserFolder.h"

#include <QDebug>
#include <QFile>

#include <filesystem>
#include <system_error>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

QDir userFolder(QStandardPaths::StandardLocation location)
{
    const QDir folder(QStandardPaths::writableLocation(location));
    const QString path = folder.absolutePath();
    // QDir makes folders as well, but doesn't say why it could not.
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(path).toStdString(), error);
    if (error)
        qWarning() << "Cannot make folder" << path << ":"
                   << QString::fromLocal8Bit(error.message().c_str());
    return folder;
}

QString writePicture(const QImage &picture, const QString &path)
{
    if (picture.isNull())
        return QStringLiteral("there is no picture");
    QFile file(path);
    // Without the flush a full disk is noticed by nobody.
    if (file.open(QIODevice::WriteOnly) && picture.save(&file, "PNG") && file.flush())
        return QString();
    return file.errorString();
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
