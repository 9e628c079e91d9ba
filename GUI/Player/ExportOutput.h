// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// What the child of an export has to say.
struct ExportEvent {
    enum class Kind { Started, Percent, Error, Done, Bad };

    Kind kind = Kind::Bad;
    int percent = 0; ///< Percent: 0 if it was no number
    QString line;    ///< Bad: what it said
};

/// What one read of that child's output says, in the order of its lines but for Done, which
/// comes last and once.
QVector<ExportEvent> exportEvents(const QByteArray &read);

/// Why the export failed, of all that the child has complained about: what it said last in its own
/// name. Other lines are left out, for they may hold the stream's address with its password.
QString exportComplaint(const QByteArray &errorOutput);

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
