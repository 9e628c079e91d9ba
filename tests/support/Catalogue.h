// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace ZorvaneClient {
namespace Tests {

/// A text of the program in a context, with its translation if it has one.
struct CatalogueMessage {
    QString context;
    QString source;
    QString comment;
    QString translation;
    bool isPlural = false;
    /// "file:line" of the code and forms that ask for it, from the root of the sources.
    QStringList places;

    bool isTranslated() const { return !translation.isEmpty(); }
    /// What makes it another message than its neighbours.
    QString key() const { return context + QLatin1Char('/') + source + QLatin1Char('/') + comment; }
};

using Catalogue = QList<CatalogueMessage>;

/// Empty, with a line in the log, if the file can't be read to its end.
Catalogue readCatalogue(const QString &path);
/// The Russian catalogue of the sources.
Catalogue russianCatalogue();
/// What the code and forms below `folders`, folders of `root`, ask for.
Catalogue extractedTexts(const QString &root, const QStringList &folders);

} // namespace Tests
} // namespace ZorvaneClient
