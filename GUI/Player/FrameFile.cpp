// SPDX-License-Identifier: MIT
#include "GUI/Player/FrameFile.h"

#include <QDebug>
#include <QDir>

#include "App/OwnerOnly.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

constexpr qint64 bytesPerPixel = 4;
constexpr auto pixelFormat = QImage::Format_ARGB32_Premultiplied;

quint64 nextFrameFileNumber = 0;

} // namespace

FrameFile::FrameFile()
    : frameFileName(QStringLiteral("zorvane-player-%1").arg(nextFrameFileNumber++))
{
}

FrameFile::~FrameFile()
{
    file.close();
    if (file.exists())
        file.remove();
}

QString FrameFile::name() const
{
    return frameFileName;
}

bool FrameFile::open()
{
    if (file.isOpen())
        return true;
    file.setFileName(QDir::tempPath() + QDir::separator() + frameFileName);
    if (create())
        return true;
    if (file.isOpen()) {
        file.close();
        file.remove();
    }
    return false;
}

bool FrameFile::create()
{
    // A file of that name is left over from a run that crashed, or planted: never write into it.
    file.remove();
    // What cameras see is nobody else's business.
    const App::OwnerOnlyFiles guard;
    if (!file.open(QIODevice::ReadWrite | QIODevice::NewOnly)) {
        qWarning() << "VideoWidget: Could not open SHM file " << file.fileName();
        return false;
    }
    if (!file.resize(byteCount)) {
        qWarning() << "VideoWidget: Could not resize SHM file to " << byteCount << " bytes";
        return false;
    }
    frameMemory = file.map(0, byteCount);
    if (!frameMemory) {
        qWarning() << "VideoWidget: Could not map SHM file to memory";
        return false;
    }
    return true;
}

QImage FrameFile::image(QSize size) const
{
    if (!frameMemory || !hasRoomFor(size))
        return QImage();
    return QImage(frameMemory, size.width(), size.height(), pixelFormat);
}

bool FrameFile::hasRoomFor(QSize size)
{
    return !size.isEmpty() && qint64(size.width()) * size.height() <= byteCount / bytesPerPixel;
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
