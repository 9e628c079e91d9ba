// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QJsonDocument>
#include <QVariant>

/// Each program has one of these. It is called over and over with other bytes; a crash or a
/// sanitizer's word is a finding.
void tryInput(const QByteArray &input);

/// So is a rule that doesn't hold.
inline void check(bool holds)
{
    if (!holds)
        __builtin_trap();
}

inline QVariant jsonOf(const QByteArray &document)
{
    return QJsonDocument::fromJson(document).toVariant();
}

inline void writeFile(const QString &name, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(name).path());
    QFile file(name);
    check(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
}
