// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "GUI/GridRules.h"

using namespace ZorvaneClient::GUI;

class GridRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void quality_data()
    {
        rows<QSize, QSize, int>(
            {"columnsByRows", "span", "expected"},
            {
                {"one tile", QSize(1, 1), QSize(1, 1), 2},
                {"2 by 2", QSize(2, 2), QSize(1, 1), 2},
                {"5 in a row", QSize(5, 1), QSize(1, 1), 1},
                {"3 by 3", QSize(3, 3), QSize(1, 1), 1},
                {"5 by 2", QSize(5, 2), QSize(1, 1), 0},
                {"4 by 4", QSize(4, 4), QSize(1, 1), 0},
                {"4 by 4, large tile", QSize(4, 4), QSize(2, 2), 2},
                {"3 by 3, divided with a rest", QSize(3, 3), QSize(2, 1), 2},
                {"empty span", QSize(4, 4), QSize(0, 0), 0},
                {"grid beyond 32 bits", QSize(1000000, 1000000), QSize(1, 1), 0},
            });
    }

    void quality()
    {
        const auto [columnsByRows, span, expected] = row<QSize, QSize, int>();
        QCOMPARE(tileQuality({columnsByRows.height(), columnsByRows.width()}, span.height(),
                             span.width()),
                 expected);
    }

    void sizeForServer_data()
    {
        rows<int, int, int, int, int, int>(
            {"rows", "columns", "cameras", "freeCells", "newRows", "newColumns"},
            {
                {"fits", 3, 3, 4, 4, 3, 3},
                {"no cameras", 1, 1, 0, 1, 1, 1},
                {"10 on an empty cell", 1, 1, 10, 1, 4, 4},
                {"one more than fits on a taken cell", 1, 1, 1, 0, 1, 1},
                {"36", 1, 1, 36, 1, 6, 6},
                {"37", 1, 1, 37, 1, 6, 6},
                {"1000", 1, 1, 1000, 1, 6, 6},
                {"5 on 2 by 3 with one free", 2, 3, 5, 1, 4, 3},
                {"rows end at six", 5, 2, 20, 0, 6, 2},
            });
    }

    void sizeForServer()
    {
        const auto [rows, columns, cameras, freeCells, newRows, newColumns] =
            row<int, int, int, int, int, int>();
        const GridSize size = gridSizeForServer({rows, columns}, cameras, freeCells);
        QCOMPARE(size.rows, newRows);
        QCOMPARE(size.columns, newColumns);
    }
};

QTEST_APPLESS_MAIN(GridRulesTest)
#include "GridRulesTest.moc"
