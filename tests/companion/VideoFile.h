// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

/// What programs other than ours find in a video file.
struct VideoFile {
    QString videoCodec; ///< empty if the file can't be read
    QString soundCodec; ///< empty if it has no sound
    QSize size;
    double seconds = 0;
    int pictures = 0;  ///< that can be decoded
    QByteArray faults; ///< what a decoder complains about

    static VideoFile read(const QString &path);
};

/// The picture that is shown at that time.
QImage pictureAt(const QString &path, double seconds);

} // namespace ZorvaneClient::Tests
