// SPDX-License-Identifier: MIT
#include "API/LayoutVersions.h"

#include <QDebug>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

#include "API/LayoutDocument.h"
#include "App/OwnerOnly.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

namespace {

constexpr int comingVersion = 0; ///< whole, but the others have not made room for it yet

/// Empty when there is no such file, or one that can't be ours.
QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly) || file.size() > LayoutBounds::documentBytes)
        return QByteArray();
    return file.readAll();
}

bool isSameList(const QByteArray &one, const QByteArray &other)
{
    const auto list = [](const QByteArray &document) {
        return QJsonDocument::fromJson(document).object().value(LayoutKey::list).toArray();
    };
    return list(one) == list(other);
}

QString versionFile(const QString &cacheFile, int number)
{
    return cacheFile + QLatin1Char('.') + QString::number(number);
}

/// The lowest number that is free, or that of the oldest.
int firstGap(const QString &cacheFile)
{
    int number = comingVersion + 1;
    while (number < keptLayoutVersions && QFile::exists(versionFile(cacheFile, number)))
        ++number;
    return number;
}

/// Makes the coming one the newest, if there is one. A kill in between leaves a gap, which the
/// next call fills.
void moveUp(const QString &cacheFile)
{
    if (!QFile::exists(versionFile(cacheFile, comingVersion)))
        return;
    for (int number = firstGap(cacheFile); number > comingVersion; --number) {
        const QByteArray from = QFile::encodeName(versionFile(cacheFile, number - 1));
        const QByteArray to = QFile::encodeName(versionFile(cacheFile, number));
        // Replaces in one step, which QFile::rename doesn't.
        if (std::rename(from.constData(), to.constData()) != 0)
            return;
    }
}

} // namespace

void keepLayoutVersion(const QString &cacheFile, const QByteArray &coming)
{
    const QByteArray present = contentOf(cacheFile);
    if (present.isEmpty() || isSameList(present, coming))
        return;
    moveUp(cacheFile); // for one who was killed before
    if (isSameList(present, contentOf(versionFile(cacheFile, comingVersion + 1))))
        return; // and before the new list was written
    const QString fileName = versionFile(cacheFile, comingVersion);
    if (!App::writeForOwner(fileName, present)) {
        qWarning() << "Could not keep the former layouts in" << fileName;
        return;
    }
    moveUp(cacheFile);
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
