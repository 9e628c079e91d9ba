// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

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
    int duration() const { return isEmpty() ? 0 : tags.last().milliseconds; }
    QByteArray bytes() const;

    /// This clip and `other` after it, `gap` milliseconds after the last tag.
    FlvClip then(const FlvClip &other, int gap = 40) const;
    FlvClip repeated(int count) const
    {
        return count <= 1 ? *this : repeated(count - 1).then(*this);
    }
    /// All time stamps divided, as an archive does that is played faster.
    FlvClip faster(int factor) const;
};

/// Overwrites `count` bytes from `from` on with others, places and values by `seed`.
QByteArray garbled(QByteArray bytes, quint32 seed, int count, int from);

} // namespace ZorvaneClient::Tests
