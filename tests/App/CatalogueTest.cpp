// SPDX-License-Identifier: MIT
// The Russian catalogue and the texts of code and forms go together.
#include <QDir>
#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/support/Catalogue.h"

using namespace ZorvaneClient::Tests;

class CatalogueTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void holdsItsMessagesOnce();
    void onlyNamesAndSamplesAreUntranslated();
    void everyTextStandsInIt();
    void nothingElseStandsInIt();
    void translationsKeepTheirMarks();
    void strayTextsAreFound_data();
    void strayTextsAreFound();

private:
    Catalogue catalogue;
    Catalogue asked;
};

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
    QSet<QString> contexts;
    for (const CatalogueMessage &message : catalogue)
        contexts.insert(message.context);
    QStringList strays;
    for (const CatalogueMessage &text : asked) {
        if (known.contains(text.key()) && !text.isPlural)
            continue;
        const char *fault =
            contexts.contains(text.context) ? "not in the catalogue" : "of an unknown context";
        strays.append(QStringLiteral("%1: \"%2\" of %3 is %4")
                          .arg(text.places.join(QStringLiteral(", ")), text.source, text.context,
                               QLatin1String(fault)));
    }
    return strays;
}

QSet<QString> placeholders(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("%\\d|%n|&"));
    QSet<QString> found;
    QRegularExpressionMatchIterator matches = pattern.globalMatch(text);
    while (matches.hasNext())
        found.insert(matches.next().captured());
    return found;
}

/// The mark that ends it, "..." included; empty after a letter.
QString endOf(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("[.:?! ]+$"));
    return pattern.match(text).captured();
}

bool write(const QString &path, const QByteArray &text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

} // namespace

void CatalogueTest::initTestCase()
{
    catalogue = russianCatalogue();
    QVERIFY(!catalogue.isEmpty());
    asked = extractedTexts(QStringLiteral(ZORVANE_SOURCE_DIR), {"App", "API", "GUI", "forms"});
    QVERIFY(!asked.isEmpty());
}

void CatalogueTest::holdsItsMessagesOnce()
{
    QSet<QString> contexts;
    int translated = 0;
    for (const CatalogueMessage &message : qAsConst(catalogue)) {
        contexts.insert(message.context);
        if (message.isTranslated())
            ++translated;
    }
    QCOMPARE(catalogue.size(), messageCount);
    QCOMPARE(keys(catalogue).size(), messageCount);
    QCOMPARE(contexts.size(), contextCount);
    QCOMPARE(translated, translatedCount);
}

void CatalogueTest::onlyNamesAndSamplesAreUntranslated()
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
        "<App Version>",
        "ServerName",
        "English",
        "Русский",
        "Zorvane",
        "Form",
        "Camera name",
        "Layout or Camera name",
    };
    QCOMPARE(sortedLines(untranslated), sortedLines(namesAndSamples));
}

void CatalogueTest::everyTextStandsInIt()
{
    const QStringList strays = strayTexts(asked, catalogue);
    QVERIFY2(strays.isEmpty(), qPrintable(strays.join(QLatin1Char('\n'))));
}

void CatalogueTest::nothingElseStandsInIt()
{
    QCOMPARE(sortedLines(keys(catalogue) - keys(asked)), sortedLines(keptMessages));
}

void CatalogueTest::translationsKeepTheirMarks()
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

void CatalogueTest::strayTextsAreFound_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("stray");
    const QByteArray inCode = "#include \"GUI/ServerWidget.h\"\n"
                              "namespace ZorvaneClient { namespace GUI {\n"
                              "void ServerWidget::f() { tr(\"%1\"); }\n}}\n";
    const QByteArray inForm = "<ui version=\"4.0\"><class>%1</class><widget><property>\n"
                              "<string>Server offline</string></property></widget></ui>\n";
    QTest::newRow("known text in code")
        << "GUI/ServerWidget.cpp" << QByteArray(inCode).replace("%1", "Edit") << "";
    QTest::newRow("new text in code")
        << "GUI/ServerWidget.cpp" << QByteArray(inCode).replace("%1", "Rename")
        << "GUI/ServerWidget.cpp:3: \"Rename\" of ZorvaneClient::GUI::ServerWidget is not in the "
           "catalogue";
    QTest::newRow("known text in a form")
        << "GUI/ServerWidget.ui" << QByteArray(inForm).replace("%1", "ServerWidget") << "";
    QTest::newRow("new form")
        << "GUI/ServerDialog.ui" << QByteArray(inForm).replace("%1", "ServerDialog")
        << "GUI/ServerDialog.ui:2: \"Server offline\" of ServerDialog is of an unknown context";
}

void CatalogueTest::strayTextsAreFound()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, text);
    QFETCH(QString, stray);
    const QTemporaryDir root;
    QVERIFY(QDir(root.path()).mkdir(QStringLiteral("GUI")));
    QVERIFY(write(root.filePath(QStringLiteral("GUI/ServerWidget.h")),
                  "namespace ZorvaneClient { namespace GUI {\n"
                  "class ServerWidget : public QWidget { Q_OBJECT void f(); };\n}}\n"));
    QVERIFY(write(root.filePath(file), text));
    const Catalogue texts = extractedTexts(root.path(), {"GUI"});
    QCOMPARE(texts.size(), 1);
    QCOMPARE(strayTexts(texts, catalogue).join(QLatin1Char('\n')), stray);
}

QTEST_GUILESS_MAIN(CatalogueTest)
#include "CatalogueTest.moc"
