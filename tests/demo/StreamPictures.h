// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>
#include <QVector>

#include "tests/support/StripReader.h"

namespace ZorvaneClient {
namespace Tests {

/// What a stream showed.
struct StreamPictures {
    struct Picture {
        QImage image;
        qint64 stampMs = 0;    ///< time stamp in the stream
        qint64 receivedMs = 0; ///< wall clock when it was decoded, since the epoch
        bool keyFrame = false;
        Strip strip; ///< of camera 0 when none could be read
    };

    QVector<Picture> pictures;
    bool sound = false; ///< MP3 sound was among the packets
    bool opened = false;
    bool ended = false;   ///< the stream came to its proper end before enough pictures
    bool damaged = false; ///< the decoder met faults

    /// Opens `url`, decodes up to `count` pictures and closes it. Blocks; gives up after
    /// `timeoutMs` without an end.
    static StreamPictures from(const QString &url, int count, int timeoutMs = 20'000);
};

} // namespace Tests
} // namespace ZorvaneClient
