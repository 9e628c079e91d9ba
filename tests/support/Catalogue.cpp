// SPDX-License-Identifier: MIT
#include "tests/support/Catalogue.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QXmlStreamReader>

namespace ZorvaneClient {
namespace Tests {

namespace {

constexpr int extractionMs = 60000;

CatalogueMessage readMessage(QXmlStreamReader *xml, const QString &context)
{
    CatalogueMessage message;
    message.context = context;
    message.isPlural = xml->attributes().hasAttribute(QLatin1String("numerus"));
    while (xml->readNextStartElement()) {
        if (xml->name() == QLatin1String("source")) {
            message.source = xml->readElementText();
        } else if (xml->name() == QLatin1String("comment")) {
            message.comment = xml->readElementText();
        } else if (xml->name() == QLatin1String("translation") && !message.isPlural) {
            message.translation = xml->readElementText();
        } else if (xml->name() == QLatin1String("location")) {
            const QXmlStreamAttributes at = xml->attributes();
            message.places.append(at.value(QLatin1String("filename")).toString() +
                                  QLatin1Char(':') + at.value(QLatin1String("line")).toString());
            xml->skipCurrentElement();
        } else {
            xml->skipCurrentElement();
        }
    }
    return message;
}

void readContext(QXmlStreamReader *xml, Catalogue *catalogue)
{
    QString name;
    while (xml->readNextStartElement()) {
        if (xml->name() == QLatin1String("name"))
            name = xml->readElementText();
        else if (xml->name() == QLatin1String("message"))
            catalogue->append(readMessage(xml, name));
        else
            xml->skipCurrentElement();
    }
}

} // namespace

Catalogue readCatalogue(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning() << "Cannot open the catalogue" << path << file.errorString();
        return Catalogue();
    }
    QXmlStreamReader xml(&file);
    Catalogue catalogue;
    if (xml.readNextStartElement()) {
        while (xml.readNextStartElement()) {
            if (xml.name() == QLatin1String("context"))
                readContext(&xml, &catalogue);
            else
                xml.skipCurrentElement();
        }
    }
    if (xml.hasError()) {
        qWarning() << "Cannot read the catalogue" << path << xml.lineNumber() << xml.errorString();
        return Catalogue();
    }
    return catalogue;
}

Catalogue russianCatalogue()
{
    return readCatalogue(QStringLiteral(ZORVANE_SOURCE_DIR "/translations/ZorvaneClient_ru.ts"));
}

Catalogue extractedTexts(const QString &root, const QStringList &folders)
{
    const QTemporaryDir scratch;
    const QString path = scratch.filePath(QStringLiteral("asked.ts"));
    QProcess lupdate;
    lupdate.setWorkingDirectory(root);
    // The include path is how it learns the full names of classes.
    lupdate.start(QStringLiteral(ZORVANE_LUPDATE),
                  QStringList{"-silent", "-locations", "absolute", "-I", "."} + folders +
                      QStringList{"-ts", path});
    if (!lupdate.waitForFinished(extractionMs) || lupdate.exitCode() != 0) {
        qWarning() << "lupdate failed:" << lupdate.errorString() << lupdate.readAllStandardError();
        return Catalogue();
    }
    Catalogue texts = readCatalogue(path);
    const QDir rootFolder(QFileInfo(root).canonicalFilePath());
    const QDir ownFolder(QFileInfo(scratch.path()).canonicalFilePath());
    for (CatalogueMessage &text : texts) {
        for (QString &place : text.places)
            place = rootFolder.relativeFilePath(QDir::cleanPath(ownFolder.filePath(place)));
    }
    return texts;
}

} // namespace Tests
} // namespace ZorvaneClient
