// SPDX-License-Identifier: MIT
#include "GUI/Player/FrameFile.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QRegularExpression>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <utility>

#include "App/Environment.h"
#include "App/OwnerOnly.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

constexpr qint64 bytesPerPixel = 4;
constexpr auto pixelFormat = QImage::Format_ARGB32_Premultiplied;

const QString nameStart = QStringLiteral("zorvane-player-");
/// One that is younger may not be locked yet.
constexpr auto youngestLeftOver = std::chrono::seconds(10);

quint64 nextFrameFileNumber = 0;

enum class Use {
    Nobody,  ///< and it is locked for as long as it stays open
    Another, ///< holds the lock
    Unknown, ///< it can't be locked
};

Use lock(int descriptor)
{
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return Use::Nobody;
    return errno == EWOULDBLOCK ? Use::Another : Use::Unknown;
}

/// Whether the name still leads to the open file.
bool isNamed(int descriptor, const QByteArray &name)
{
    struct stat open = {};
    struct stat named = {};
    return ::fstat(descriptor, &open) == 0 && ::lstat(name.constData(), &named) == 0 &&
           open.st_ino == named.st_ino && open.st_dev == named.st_dev;
}

/// What this user may not even look into is another one's.
bool isAnothers(const QByteArray &name)
{
    struct stat named = {};
    return ::lstat(name.constData(), &named) == 0 && named.st_uid != ::geteuid();
}

/// Removes what lies under that name if `isRemovable` of who uses it.
template <typename Rule>
bool removeIf(const QString &fileName, Rule isRemovable)
{
    const QByteArray name = QFile::encodeName(fileName);
    const int present = ::open(name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    Use use = present >= 0                          ? lock(present)
              : errno == EACCES && isAnothers(name) ? Use::Another
                                                    : Use::Unknown;
    // Another copy that starts may have put its own in the place of the one that was left over.
    if (use == Use::Nobody && !isNamed(present, name))
        use = Use::Another;
    const bool isRemoved = isRemovable(use);
    if (isRemoved)
        QFile::remove(fileName);
    ::close(present); // nothing, where none could be opened
    return isRemoved;
}

} // namespace

void FrameFile::removeLeftOvers()
{
    const QDateTime oldEnough = App::Environment::now().addSecs(-youngestLeftOver.count());
    const QRegularExpression number(QStringLiteral("^%1[0-9]+$").arg(nameStart));
    const QFileInfoList files =
        QDir(QDir::tempPath()).entryInfoList({nameStart + QLatin1Char('*')});
    for (const QFileInfo &file : files) {
        if (file.lastModified() < oldEnough && number.match(file.fileName()).hasMatch())
            removeIf(file.filePath(), [](Use use) { return use == Use::Nobody; });
    }
}

FrameFile::FrameFile() : frameFileName(nameStart + QString::number(nextFrameFileNumber++))
{
}

FrameFile::~FrameFile()
{
    if (file.isOpen() && !hasVanished())
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
    if (taken && !std::exchange(isWarnedOfAnother, true)) // records are tried at each tick
        qWarning() << "VideoWidget: Another copy of the program uses SHM file" << file.fileName();
    if (file.isOpen()) {
        if (!taken)
            file.remove();
        close();
    }
    return false;
}

bool FrameFile::hasVanished() const
{
    return file.isOpen() && !isNamed(file.handle(), QFile::encodeName(file.fileName()));
}

void FrameFile::close()
{
    if (frameMemory)
        file.unmap(frameMemory);
    frameMemory = nullptr;
    backedBytes = 0;
    isWarned = false;
    file.close();
}

bool FrameFile::create()
{
    // A file of that name is left over from a run that crashed, or planted: never write into it.
    // Where nothing can be locked, one left over would keep this tile dark for ever.
    taken = !removeIf(file.fileName(), [](Use use) { return use != Use::Another; });
    if (taken)
        return false;
    // What cameras see is nobody else's business.
    const App::OwnerOnlyFiles guard;
    if (!file.open(QIODevice::ReadWrite | QIODevice::NewOnly)) {
        qWarning() << "VideoWidget: Could not open SHM file " << file.fileName();
        return false;
    }
    // Until it is locked another copy may take it for one left over.
    taken = lock(file.handle()) == Use::Another || hasVanished();
    if (taken)
        return false;
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
    if (!frameMemory || !hasRoomFor(size) ||
        !isBacked(bytesPerPixel * size.width() * size.height()))
        return QImage();
    return QImage(frameMemory, size.width(), size.height(), pixelFormat);
}

/// On a full disk, memory that is over no block yet ends whoever touches it.
bool FrameFile::isBacked(qint64 bytes) const
{
    if (bytes <= backedBytes)
        return true;
    int result = EINTR;
    while (result == EINTR)
        result = ::posix_fallocate(file.handle(), 0, bytes);
    if (result != 0) {
        if (!std::exchange(isWarned, true))
            qWarning() << "VideoWidget: No room for a frame in" << file.fileName();
        return false;
    }
    backedBytes = bytes;
    return true;
}

bool FrameFile::hasRoomFor(QSize size)
{
    return !size.isEmpty() && qint64(size.width()) * size.height() <= byteCount / bytesPerPixel;
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
