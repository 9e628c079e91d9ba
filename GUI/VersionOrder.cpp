// SPDX-License-Identifier: MIT
#include "GUI/VersionOrder.h"

#include <QStringList>

#include <algorithm>

namespace ZorvaneClient {
namespace GUI {

namespace {

QStringList piecesOf(const QString &version)
{
    return plainVersion(version).split(QLatin1Char('.'));
}

} // namespace

QString plainVersion(const QString &version)
{
    return version.section(QLatin1Char('-'), 0, 0);
}

bool isNewerVersion(const QString &version, const QString &current)
{
    const QStringList pieces = piecesOf(version);
    const QStringList currentPieces = piecesOf(current);
    const int count = static_cast<int>(std::min(pieces.size(), currentPieces.size()));
    for (int i = 0; i < count; ++i) {
        const int piece = pieces.at(i).toInt();
        const int currentPiece = currentPieces.at(i).toInt();
        if (piece != currentPiece)
            return piece > currentPiece;
    }
    return false;
}

} // namespace GUI
} // namespace ZorvaneClient
