// SPDX-License-Identifier: MIT
#include <QtTest>

#include "GUI/GridRules.h"

using namespace ZorvaneClient::GUI;

class GridRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void quality_data();
    void quality();
    void sizeForServer_data();
    void sizeForServer();
};

void GridRulesTest::quality_data()
{
    QTest::addColumn<QSize>("columnsByRows");
    QTest::addColumn<QSize>("span");
    QTest::addColumn<int>("expected");
    QTest::newRow("one tile") << QSize(1, 1) << QSize(1, 1) << 2;
    QTest::newRow("2 by 2") << QSize(2, 2) << QSize(1, 1) << 2;
    QTest::newRow("5 in a row") << QSize(5, 1) << QSize(1, 1) << 1;
    QTest::newRow("3 by 3") << QSize(3, 3) << QSize(1, 1) << 1;
    QTest::newRow("5 by 2") << QSize(5, 2) << QSize(1, 1) << 0;
    QTest::newRow("4 by 4") << QSize(4, 4) << QSize(1, 1) << 0;
    QTest::newRow("4 by 4, large tile") << QSize(4, 4) << QSize(2, 2) << 2;
    QTest::newRow("3 by 3, divided with a rest") << QSize(3, 3) << QSize(2, 1) << 2;
    QTest::newRow("empty span") << QSize(4, 4) << QSize(0, 0) << 0;
    QTest::newRow("grid beyond 32 bits") << QSize(1000000, 1000000) << QSize(1, 1) << 0;
}

void GridRulesTest::quality()
{
    QFETCH(QSize, columnsByRows);
    QFETCH(QSize, span);
    QFETCH(int, expected);
    QCOMPARE(
        tileQuality({columnsByRows.height(), columnsByRows.width()}, span.height(), span.width()),
        expected);
}

void GridRulesTest::sizeForServer_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("cameras");
    QTest::addColumn<int>("freeCells");
    QTest::addColumn<int>("newRows");
    QTest::addColumn<int>("newColumns");
    QTest::newRow("fits") << 3 << 3 << 4 << 4 << 3 << 3;
    QTest::newRow("no cameras") << 1 << 1 << 0 << 1 << 1 << 1;
    QTest::newRow("10 on an empty cell") << 1 << 1 << 10 << 1 << 4 << 4;
    QTest::newRow("one more than fits on a taken cell") << 1 << 1 << 1 << 0 << 1 << 1;
    QTest::newRow("36") << 1 << 1 << 36 << 1 << 6 << 6;
    QTest::newRow("37") << 1 << 1 << 37 << 1 << 6 << 6;
    QTest::newRow("1000") << 1 << 1 << 1000 << 1 << 6 << 6;
    QTest::newRow("5 on 2 by 3 with one free") << 2 << 3 << 5 << 1 << 4 << 3;
    QTest::newRow("rows end at six") << 5 << 2 << 20 << 0 << 6 << 2;
}

void GridRulesTest::sizeForServer()
{
    QFETCH(int, rows);
    QFETCH(int, columns);
    QFETCH(int, cameras);
    QFETCH(int, freeCells);
    QFETCH(int, newRows);
    QFETCH(int, newColumns);
    const GridSize size = gridSizeForServer({rows, columns}, cameras, freeCells);
    QCOMPARE(size.rows, newRows);
    QCOMPARE(size.columns, newColumns);
}

QTEST_APPLESS_MAIN(GridRulesTest)
#include "GridRulesTest.moc"
