// SPDX-License-Identifier: MIT
#include "API/LayoutDocument.h"

#include <QJsonDocument>
#include <QStandardPaths>
#include <QTest>

#include "API/Layout.h"

using namespace ZorvaneClient::API;
using namespace ZorvaneClient::API::Internal;

namespace {

QVariantList layoutsOf(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).toVariant().toList();
}

QByteArray layoutWithCells(const QByteArray &cells)
{
    return R"([{"id":"a","name":"A","rows":2,"columns":3,"cameras":[)" + cells + "]}]";
}

} // namespace

class LayoutDocumentTest : public QObject
{
    Q_OBJECT

private slots:
    void plausibleLayoutsPassUnchanged();
    void hostileSize_data();
    void hostileSize();
    void hostileCells_data();
    void hostileCells();
    void longNameIsCut();
    void tooManyLayouts();
    void cacheFileName_data();
    void cacheFileName();
};

void LayoutDocumentTest::plausibleLayoutsPassUnchanged()
{
    const QVariantList given = layoutsOf(
        R"([{"id":"a","name":"A","rows":32,"columns":1,"cameras":[
               {"server":"s","camera":7,"row":31,"column":0,"w":1,"h":2},
               {"server":"s","camera":8,"row":0,"column":0}]},
            {"name":"without the rest"}, {}])");
    const QList<QVariantMap> passed = boundedLayouts(given);
    QCOMPARE(passed.size(), given.size());
    for (int i = 0; i < given.size(); ++i)
        QCOMPARE(passed.at(i), given.at(i).toMap());
}

void LayoutDocumentTest::hostileSize_data()
{
    QTest::addColumn<QByteArray>("layouts");
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("columns");
    QTest::newRow("huge") << QByteArray(R"([{"rows":2000000000,"columns":33}])") << 32 << 32;
    QTest::newRow("negative") << QByteArray(R"([{"rows":-5,"columns":-2000000000}])") << 0 << 0;
    QTest::newRow("one is plausible") << QByteArray(R"([{"rows":3,"columns":100000}])") << 3 << 32;
}

void LayoutDocumentTest::hostileSize()
{
    QFETCH(QByteArray, layouts);
    QFETCH(int, rows);
    QFETCH(int, columns);

    QTest::ignoreMessage(QtWarningMsg, "Layouts beyond all bounds, cut: 1");
    const Layout layout(boundedLayouts(layoutsOf(layouts)).constFirst());
    QCOMPARE(layout.rows(), rows);
    QCOMPARE(layout.columns(), columns);
}

void LayoutDocumentTest::hostileCells_data()
{
    QTest::addColumn<QByteArray>("cells");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("width");
    QTest::newRow("row before the grid") << QByteArray(R"({"row":-1,"column":0})") << 0 << 0;
    QTest::newRow("column far away") << QByteArray(R"({"row":0,"column":100000})") << 0 << 0;
    QTest::newRow("huge span") << QByteArray(R"({"row":0,"column":0,"w":2000000000})") << 1 << 32;
    QTest::newRow("negative span") << QByteArray(R"({"row":0,"column":0,"w":-7})") << 1 << 0;
    QTest::newRow("only the bad ones go")
        << QByteArray(R"({"row":32,"column":0},{"row":1,"column":1,"w":1},{"row":0,"column":-9})")
        << 1 << 1;
}

void LayoutDocumentTest::hostileCells()
{
    QFETCH(QByteArray, cells);
    QFETCH(int, count);
    QFETCH(int, width);

    QTest::ignoreMessage(QtWarningMsg, "Layouts beyond all bounds, cut: 1");
    const QVariantMap layout = boundedLayouts(layoutsOf(layoutWithCells(cells))).constFirst();
    const QVariantList left = layout.value(QStringLiteral("cameras")).toList();
    QCOMPARE(left.size(), count);
    if (count > 0)
        QCOMPARE(left.constFirst().toMap().value(QStringLiteral("w")).toInt(), width);
}

void LayoutDocumentTest::longNameIsCut()
{
    const QVariantMap layout{{QStringLiteral("name"), QString(1000000, QLatin1Char('x'))}};
    QTest::ignoreMessage(QtWarningMsg, "Layouts beyond all bounds, cut: 1");
    QCOMPARE(Layout(boundedLayouts({layout}).constFirst()).name().size(), LayoutBounds::nameLength);
}

void LayoutDocumentTest::tooManyLayouts()
{
    QVariantList many;
    for (int i = 0; i < LayoutBounds::layouts + 500; ++i)
        many.append(QVariantMap{{QStringLiteral("id"), QString::number(i)}});
    QTest::ignoreMessage(QtWarningMsg, "Too many layouts: 1500 taken: 1000");
    const QList<QVariantMap> taken = boundedLayouts(many);
    QCOMPARE(taken.size(), LayoutBounds::layouts);
    QCOMPARE(taken.constLast().value(QStringLiteral("id")).toString(), QStringLiteral("999"));
}

void LayoutDocumentTest::cacheFileName_data()
{
    QTest::addColumn<QString>("email");
    QTest::addColumn<QString>("digest");
    const QString demo = QStringLiteral("924942403f0708c36c6637682cb19b21");
    QTest::newRow("lower case") << "demo@zorvane.example" << demo;
    QTest::newRow("letter case does not matter") << "Demo@Zorvane.EXAMPLE" << demo;
    QTest::newRow("nobody") << ""
                            << "d41d8cd98f00b204e9800998ecf8427e";
    QTest::newRow("Cyrillic") << QString::fromUtf8("Ж") << "d82d7ca255082e2ca8720d69da507ee1";
}

void LayoutDocumentTest::cacheFileName()
{
    QFETCH(QString, email);
    QFETCH(QString, digest);
    QCOMPARE(layoutsCacheFile(email),
             QStandardPaths::writableLocation(QStandardPaths::CacheLocation) +
                 QStringLiteral("/layouts.") + digest);
}

QTEST_GUILESS_MAIN(LayoutDocumentTest)
#include "LayoutDocumentTest.moc"
