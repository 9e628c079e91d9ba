// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "GUI/LayoutWidget.h"
#include "tests/support/Roster.h"

using GUI::LayoutWidget;

namespace {

QByteArray serverData(const QString &id)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << id;
    return bytes;
}

QStringList names(int count)
{
    QStringList result;
    for (int number = 1; number <= count; ++number)
        result.append("camera %1"_s.arg(number, 3, 10, QLatin1Char('0')));
    return result;
}

bool drop(LayoutWidget &grid, const QString &format, const QByteArray &bytes, Qt::DropAction action)
{
    QMimeData data;
    data.setData(format, bytes);
    QDragEnterEvent enter(QPoint(5, 5), action, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&grid, &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent dropEvent(QPointF(5, 5), action, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&grid, &dropEvent);
    return true;
}

} // namespace

/// The grid as a place to drop servers and layouts on.
class LayoutDropTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<API::ServerPtr>("API::ServerPtr");
        addServerToRoster("five"_s, names(5));
        addServerToRoster("ten"_s, names(10));
        addServerToRoster("forty"_s, names(40));
    }

    void acceptsServersAndLayoutsOnly_data()
    {
        rows<QString, bool>({"format", "accepted"}, {
                                                        {"server", "server", true},
                                                        {"layout", "layout", true},
                                                        {"camera", "camera", false},
                                                        {"tile", "layout-swap", false},
                                                        {"file", "text/uri-list", false},
                                                    });
    }

    void acceptsServersAndLayoutsOnly()
    {
        const auto [format, accepted] = row<QString, bool>();
        LayoutWidget grid;
        grid.openLayout(API::LayoutPtr::create());
        QMimeData data;
        data.setData(format, QByteArrayLiteral("x"));
        QDragEnterEvent enter(QPoint(5, 5), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&grid, &enter);
        QCOMPARE(enter.isAccepted(), accepted);
        QCOMPARE(grid.property("drop").toBool(), accepted);
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(&grid, &leave);
        QCOMPARE(grid.property("drop").toBool(), false);
    }

    void droppedServerFillsTheGrid_data()
    {
        rows<QString, QSize, int, QSize, bool>(
            {"server", "before", "taken", "after", "announced"},
            {
                {"ten on one cell", "ten", QSize(1, 1), 0, QSize(4, 4), true},
                {"forty on one cell", "forty", QSize(1, 1), 0, QSize(6, 6), true},
                {"five fit", "five", QSize(3, 3), 0, QSize(3, 3), false},
                {"five on 3 columns by 2 rows", "five", QSize(3, 2), 5, QSize(3, 4), false},
            });
    }

    void droppedServerFillsTheGrid()
    {
        const auto [server, before, taken, after, announced] =
            row<QString, QSize, int, QSize, bool>();
        LayoutWidget grid;
        const auto layout = API::LayoutPtr::create();
        layout->resize(before.height(), before.width());
        for (int index = 0; index < taken; ++index)
            layout->setCamera(rosterCamera("ten"_s, index + 1), index / before.width(),
                              index % before.width(), 1, 1);
        grid.openLayout(layout);
        QSignalSpy serverAdded(&grid, &LayoutWidget::serverAdded);
        QVERIFY(drop(grid, "server"_s, serverData(server), Qt::MoveAction));
        QCOMPARE(QSize(grid.workingLayout()->columns(), grid.workingLayout()->rows()), after);
        QCOMPARE(serverAdded.count(), announced ? 1 : 0);
        const int cameras = server == "five"_s ? 5 : server == "ten"_s ? 10 : 36;
        QCOMPARE(grid.playerCount(), taken + cameras);
    }

    void camerasBeyondTheGridAreLeftOut()
    {
        LayoutWidget grid;
        grid.openLayout(API::LayoutPtr::create());
        drop(grid, "server"_s, serverData("forty"_s), Qt::MoveAction);
        QCOMPARE(grid.playerCount(), 36);
        QCOMPARE(grid.workingLayout()->cellAt(0, 0).camera->name(), "camera 001"_s);
        QCOMPARE(grid.workingLayout()->cellAt(1, 0).camera->name(), "camera 007"_s);
        QCOMPARE(grid.workingLayout()->cellAt(5, 5).camera->name(), "camera 036"_s);
    }

    void unknownServerChangesNothing()
    {
        LayoutWidget grid;
        grid.openLayout(API::LayoutPtr::create());
        drop(grid, "server"_s, serverData("gone"_s), Qt::MoveAction);
        drop(grid, "server"_s, QByteArrayLiteral("\x01"), Qt::MoveAction);
        QCOMPARE(grid.playerCount(), 0);
        QCOMPARE(grid.workingLayout()->rows(), 1);
    }

    void droppedLayoutIsFoundByName()
    {
        const auto layout = API::LayoutPtr::create();
        layout->setName(QString::fromUtf8("Двор"));
        API::CloudAPIClient().addLayout(layout);
        LayoutWidget grid;
        grid.openLayout(API::LayoutPtr::create());
        API::LayoutPtr dropped;
        connect(&grid, &LayoutWidget::layoutDropped, &grid,
                [&dropped](API::LayoutPtr found) { dropped = found; });
        drop(grid, "layout"_s, QByteArrayLiteral("no such"), Qt::CopyAction);
        QVERIFY(!dropped);
        drop(grid, "layout"_s, layout->name().toUtf8(), Qt::CopyAction);
        QCOMPARE(dropped, layout);
    }
};

QTEST_MAIN(LayoutDropTest)
#include "LayoutDropTest.moc"
