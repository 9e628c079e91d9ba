// SPDX-License-Identifier: MIT
// The Russian catalogue and the texts of code and forms go together.
#include "tests/support/Test.h"

#include "tests/support/Catalogue.h"

namespace {

constexpr int contextCount = 29;
constexpr int messageCount = 168;
constexpr int translatedCount = 142;

/// They are kept although nothing asks for them.
const QSet<QString> keptMessages = {
    "ArchiveControlPanel/Export completed. Open path/",
    "ArchiveControlPanel/Export error/",
    "QObject/%1 service error: requested user does not exist/",
    "QObject/Unknown error/",
    "QObject/Video Service/",
    "QObject/Zorvane/",
    "ZorvaneClient::GUI::ArchiveControlPanel/Export completed. /",
    "ZorvaneClient::GUI::ArchiveControlPanel/Open path/",
};

QSet<QString> keys(const Catalogue &messages)
{
    QSet<QString> found;
    for (const CatalogueMessage &message : messages)
        found.insert(message.key());
    return found;
}

QString sortedLines(const QSet<QString> &texts)
{
    QStringList list = texts.values();
    list.sort();
    return list.join(QLatin1Char('\n'));
}

/// One line for each text that is asked for and doesn't stand in the catalogue.
QStringList strayTexts(const Catalogue &asked, const Catalogue &catalogue)
{
    const QSet<QString> known = keys(catalogue);
    QStringList strays;
    for (const CatalogueMessage &text : asked) {
        if (!known.contains(text.key()) || text.isPlural)
            strays.append(
                "%1: \"%2\" of %3"_s.arg(text.places.join(", "_s), text.source, text.context));
    }
    return strays;
}

QSet<QString> placeholders(const QString &text)
{
    static const QRegularExpression pattern("%\\d|%n|&"_s);
    QSet<QString> found;
    QRegularExpressionMatchIterator matches = pattern.globalMatch(text);
    while (matches.hasNext())
        found.insert(matches.next().captured());
    return found;
}

/// The mark that ends it, "..." included; empty after a letter.
QString endOf(const QString &text)
{
    static const QRegularExpression pattern("[.:?! ]+$"_s);
    return pattern.match(text).captured();
}

} // namespace

class CatalogueTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        catalogue = russianCatalogue();
        QVERIFY(!catalogue.isEmpty());
        asked = extractedTexts(QStringLiteral(ZORVANE_SOURCE_DIR), {"App", "API", "GUI", "forms"});
        QVERIFY(!asked.isEmpty());
    }

    void holdsItsMessagesOnce()
    {
        QSet<QString> contexts;
        int translated = 0;
        for (const CatalogueMessage &message : qAsConst(catalogue)) {
            contexts.insert(message.context);
            translated += message.isTranslated();
        }
        QCOMPARE(catalogue.size(), messageCount);
        QCOMPARE(keys(catalogue).size(), messageCount);
        QCOMPARE(contexts.size(), contextCount);
        QCOMPARE(translated, translatedCount);
    }

    void onlyNamesAndSamplesAreUntranslated()
    {
        QSet<QString> untranslated;
        for (const CatalogueMessage &message : qAsConst(catalogue)) {
            if (!message.isTranslated())
                untranslated.insert(message.source);
        }
        const QSet<QString> namesAndSamples = {
            "0%",
            "00:00:00",
            "10/08",
            "10:27:35",
            "127.0.0.1",
            "1x",
            "8080",
            "MMM dd",
            "email",
            "English",
            "Русский",
            "Zorvane",
            "Form",
            "ServerName",
            "<App Version>",
            "Camera name",
            "Layout or Camera name",
        };
        QCOMPARE(sortedLines(untranslated), sortedLines(namesAndSamples));
    }

    void everyTextStandsInIt()
    {
        const QStringList strays = strayTexts(asked, catalogue);
        QVERIFY2(strays.isEmpty(), qPrintable(strays.join(QLatin1Char('\n'))));
    }

    void nothingElseStandsInIt()
    {
        QCOMPARE(sortedLines(keys(catalogue) - keys(asked)), sortedLines(keptMessages));
    }

    void translationsKeepTheirMarks()
    {
        QStringList faults;
        for (const CatalogueMessage &message : qAsConst(catalogue)) {
            if (!message.isTranslated())
                continue;
            if (placeholders(message.source) != placeholders(message.translation) ||
                endOf(message.source) != endOf(message.translation))
                faults.append(message.translation);
        }
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QLatin1Char('\n'))));
    }

private:
    Catalogue catalogue;
    Catalogue asked;
};

QTEST_GUILESS_MAIN(CatalogueTest)
#include "CatalogueTest.moc"
