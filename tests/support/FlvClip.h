// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace ZorvaneClient {
namespace Tests {

/// One tag of an FLV file, with the size field that follows it.
struct FlvTag {
    int milliseconds = 0;
    QByteArray bytes;
};

/// An FLV file taken apart into its tags.
struct FlvClip {
    QByteArray header;
    QVector<FlvTag> tags;

    /// Makes a clip with the `ffmpeg` program; `arguments` name inputs and encoders. Empty if
    /// that failed.
    static FlvClip make(const QStringList &arguments);

    bool isEmpty() const { return tags.isEmpty(); }
    int duration() const;
    QByteArray bytes() const;

    /// This clip and `other` after it, `gap` milliseconds after the last tag.
    FlvClip then(const FlvClip &other, int gap = 40) const;
    FlvClip repeated(int count) const;
    /// All time stamps divided, as an archive does that is played faster.
    FlvClip faster(int factor) const;
};

/// Overwrites `count` bytes from `from` on with others, places and values by `seed`.
QByteArray garbled(QByteArray bytes, quint32 seed, int count, int from);

} // namespace Tests
} // namespace ZorvaneClient
