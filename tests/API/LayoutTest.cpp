// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <limits>

#include "API/Camera.h"
#include "API/CloudData.h"
#include "API/Layout.h"
#include "API/Server.h"

using namespace ZorvaneClient::API;

namespace {

QVariantMap cell(int camera, int row, int column, int w = 1, int h = 1)
{
    return {{"server"_s, "s1"_s}, {"camera"_s, camera}, {"row"_s, row},
            {"column"_s, column}, {"w"_s, w},           {"h"_s, h}};
}

QVariantMap layoutMap(const QVariantList &cells, int rows = 3, int columns = 3)
{
    return {{"id"_s, "one"_s},
            {"name"_s, "Yard"_s},
            {"rows"_s, rows},
            {"columns"_s, columns},
            {"cameras"_s, cells}};
}

/// "row,column wxh camera" of each cell.
QStringList describe(const Layout &layout)
{
    QStringList result;
    const QList<LayoutCell> cells = layout.cellList();
    for (const LayoutCell &entry : cells) {
        result << "%1,%2 %3x%4 %5"_s.arg(entry.area.left())
                      .arg(entry.area.top())
                      .arg(entry.area.width())
                      .arg(entry.area.height())
                      .arg(entry.camera ? entry.camera->id() : 0);
    }
    return result;
}

} // namespace

class LayoutTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        const ServerPtr server = ServerPtr::create(QVariantMap{{"id"_s, "s1"_s}});
        for (int number = 1; number <= 3; ++number) {
            const CameraPtr added = CameraPtr::create();
            added->setId(server->id(), number);
            server->addCamera(added);
        }
        Internal::cloudData.servers.insert(server->id(), server);
    }

    void cleanup() { Internal::cloudData.servers.clear(); }

    void jsonOfATile()
    {
        Layout layout(layoutMap({}));
        layout.setCamera(camera(2), 2, 1, 1, 2);
        layout.setCamera(CameraPtr(), 0, 0, 1, 1);
        const QJsonObject json = QJsonObject::fromVariantMap(layout.toVariantMap());
        QCOMPARE(
            QJsonDocument(json).toJson(QJsonDocument::Compact),
            QByteArray(R"({"cameras":[{"camera":2,"column":1,"h":2,"row":2,"server":"s1","w":1}],)"
                       R"("columns":3,"id":"one","name":"Yard","rows":3})"));

        layout.clearCell(0, 0);
        QVERIFY(Layout(json) == layout);
    }

    void newerVersion()
    {
        Layout layout(layoutMap({cell(1, 0, 0), cell(2, 1, 1)}));
        QSignalSpy spy(&layout, &Layout::updated);
        QVariantMap newer = layoutMap({cell(3, 1, 1, 2, 1), cell(9, 0, 0), cell(1, 2, 0)}, 5, 6);
        newer.insert("id"_s, "other"_s);
        newer.insert("name"_s, "Gate"_s);
        layout.update(newer);
        // Camera 9 is not in the roster: what stood in its place stays.
        QCOMPARE(describe(layout), (QStringList{"0,0 1x1 1"_s, "2,0 1x1 1"_s, "1,1 2x1 3"_s}));
        QCOMPARE(layout.id(), "one"_s);
        QCOMPARE(layout.name(), "Gate"_s);
        QCOMPARE(layout.rows(), 5);
        QCOMPARE(layout.columns(), 6);
        QVERIFY(spy.isEmpty());
    }

    void cellBounds()
    {
        Layout layout(layoutMap({}));
        layout.setCamera(camera(1), 4, 0, 1, 1);
        layout.setCamera(camera(1), 0, 4, 1, 1);
        QVERIFY(layout.cellList().isEmpty());
        // The bounds are inclusive.
        layout.setCamera(camera(1), 3, 3, 1, 1);
        QCOMPARE(layout.cellList().size(), 1);
        QSignalSpy spy(&layout, &Layout::updated);
        layout.clearCell(3, 4);
        layout.clearCell(2, 2);
        QVERIFY(spy.isEmpty());
        layout.clearCell(3, 3);
        QCOMPARE(spy.size(), 1);
    }

    void swapCells_data()
    {
        QTest::addColumn<QPoint>("first"); // row, column
        QTest::addColumn<QPoint>("second");
        QTest::addColumn<QStringList>("result");

        const auto row = [](const char *name, const QPoint &first, const QPoint &second,
                            const QStringList &result) {
            QTest::newRow(name) << first << second << result;
        };
        row("two tiles", {0, 0}, {2, 1}, {"0,0 1x1 2", "2,1 1x1 1"});
        row("tile to empty cell", {0, 0}, {2, 2}, {"2,1 1x2 2", "2,2 1x1 1"});
        row("empty cell to tile", {2, 2}, {0, 0}, {"0,0 1x1 0", "2,1 1x2 2", "2,2 1x1 1"});
        row("two empty cells", {2, 2}, {0, 2}, {"0,0 2x2 1", "2,1 1x2 2", "0,2 1x1 0"});
    }

    void swapCells()
    {
        QFETCH(QPoint, first);
        QFETCH(QPoint, second);
        Layout layout(layoutMap({cell(1, 0, 0, 2, 2), cell(2, 2, 1, 1, 2)}));
        QSignalSpy spy(&layout, &Layout::updated);
        layout.swapCells(first.x(), first.y(), second.x(), second.y());
        QTEST(describe(layout), "result");
        QVERIFY(spy.isEmpty());
    }

    void resize()
    {
        Layout layout(layoutMap({cell(1, 0, 0, 3, 1), cell(2, 2, 0), cell(3, 0, 2)}));
        QSignalSpy spy(&layout, &Layout::updated);
        layout.resize(9, 9);
        QCOMPARE(layout.cellList().size(), 3);
        layout.resize(2, 9);
        QCOMPARE(describe(layout), (QStringList{"0,0 3x1 1"_s, "0,2 1x1 3"_s}));
        layout.resize(2, 2);
        QCOMPARE(describe(layout), QStringList("0,0 3x1 1"_s));
        QCOMPARE(spy.size(), 3);
        QCOMPARE(layout.rows(), 2);
        QCOMPARE(layout.columns(), 2);
    }

    void copiesAndComparison()
    {
        Layout layout(layoutMap({cell(1, 0, 0, 2, 1)}));
        const Layout copy(layout);
        QVERIFY(copy == layout);

        layout.clearCell(0, 0);
        layout.setCamera(camera(1), 0, 0, 1, 1); // the same camera, another span
        QVERIFY(layout != copy);
    }

    void hostileJson()
    {
        constexpr int most = std::numeric_limits<int>::max();
        constexpr int least = std::numeric_limits<int>::min();
        QVariantList cells{cell(1, most, most, most, most),
                           cell(1, least, least, least, least),
                           cell(1, -1, -1),
                           7,
                           QVariant(),
                           QVariantList{1},
                           "cell"_s};
        for (int i = 0; i < 10000; ++i) {
            cells.append(cell(1 + i % 3, 0, i));
        }
        Layout layout(layoutMap(cells, 1000000000, 1000000000));
        QCOMPARE(layout.cellList().size(), 10003);
        QCOMPARE(layout.freeCellCount(), most);
        QVERIFY(Layout(layout) == layout);
        QCOMPARE(layout.toVariantMap().value("cameras"_s).toList().size(), 10003);
        layout.resize(2, 2);
        QVERIFY(layout.cellAt(0, 1).camera);
        QVERIFY(!layout.cellAt(most, most).camera);

        Layout negative(layoutMap({}, -5, least));
        negative.setCamera(camera(1), 0, 0, 1, 1);
        QVERIFY(negative.cellList().isEmpty());
        QVERIFY(Layout(QVariantMap{{"cameras"_s, 5}}).cellList().isEmpty());
    }

private:
    CameraPtr camera(int number) const
    {
        return Internal::cloudData.servers.first()->cameras().value(number);
    }
};

QTEST_MAIN(LayoutTest)
#include "LayoutTest.moc"
