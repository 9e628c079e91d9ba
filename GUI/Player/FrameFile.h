// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QImage>
#include <QSize>
#include <QString>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// The file in the temporary folder through which a child hands its frames to a tile: pixels
/// in the order blue, green, red, alpha, rows from the top, no header. The child writes while
/// the tile reads.
class FrameFile
{
public:
    static constexpr qint64 byteCount = 12582912;

    /// Removes what runs that crashed have left in the temporary folder, where a lock shows that
    /// nobody uses it.
    static void removeLeftOvers();

    /// Takes the next name of this process. Makes no file.
    FrameFile();
    /// Removes the file, if it is the one that this object made.
    ~FrameFile();
    Q_DISABLE_COPY(FrameFile)

    /// Bare name: the child looks in the same temporary folder.
    QString name() const;
    /// Makes the file, readable by its owner only, and maps it; once that is done, does nothing.
    /// False, with a warning in the log and no file of ours left, if it can't.
    bool open();
    /// The last `open()` found the name in use: by another copy of the program that runs in the
    /// same temporary folder.
    bool isTaken() const { return taken; }
    /// Somebody has removed it: a child that starts now would not find it.
    bool hasVanished() const;
    /// No image of it may be used any more; `open()` makes it anew.
    void close();

    /// The current frame in place, with no copy; valid until it is closed. Null if there
    /// is no file yet, it has no room for `size`, or the disk has none.
    QImage image(QSize size) const;
    static bool hasRoomFor(QSize size);

private:
    bool create();
    bool isBacked(qint64 bytes) const;

    QString frameFileName;
    QFile file;
    uchar *frameMemory = nullptr;
    bool taken = false;
    bool isWarnedOfAnother = false;
    mutable bool isWarned = false;
    mutable qint64 backedBytes = 0; ///< so many can be read and written without a fault
};

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
