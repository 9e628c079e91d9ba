// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QLatin1String>
#include <QStringList>
#include <QVector>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// The lines of one read of a child's output up to the first NUL, without the blanks round them.
/// They stay in `read`: most say "frame", and those need no copy. Nothing is carried over to the
/// next read, so a line torn across two reads counts as two lines.
QVector<QLatin1String> childLines(const QByteArray &read);

/// What a line says first, up to a blank.
QLatin1String firstWord(QLatin1String line);

/// All that stands between single blanks, so that two in a row have an empty word between them.
QStringList wordsOf(QLatin1String line);

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
