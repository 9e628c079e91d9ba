// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QtGlobal>

namespace ZorvaneClient {
namespace Tests {

/// What tiles and their children could leave behind in this process, at one moment.
struct ProcessTraces {
    static ProcessTraces now();

    /// In words, to compare and to read.
    QString text() const;

    int descriptors = 0;
    int mappings = 0; ///< of frame files
    int files = 0;    ///< frame files in the folder for temporary files
    int children = 0; ///< also those that have ended and were not waited for
};

qint64 residentBytes();

} // namespace Tests
} // namespace ZorvaneClient
