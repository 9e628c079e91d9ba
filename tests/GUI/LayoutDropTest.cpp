// SPDX-License-Identifier: MIT
#include <QDataStream>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QtTest>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "GUI/LayoutWidget.h"
#include "tests/support/Roster.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;
using GUI::LayoutWidget;

/// The grid as a place to drop servers and layouts on.
class LayoutDropTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void acceptsServersAndLayoutsOnly_data();
    void acceptsServersAndLayoutsOnly();
    void droppedServerFillsTheGrid_data();
    void droppedServerFillsTheGrid();
    void camerasBeyondTheGridAreLeftOut();
    void unknownServerChangesNothing();
    void droppedLayoutIsFoundByName();
};

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
        result.append(QStringLiteral("camera %1").arg(number, 3, 10, QLatin1Char('0')));
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

void LayoutDropTest::initTestCase()
{
    qRegisterMetaType<API::ServerPtr>("API::ServerPtr");
    addServerToRoster(QStringLiteral("five"), names(5));
    addServerToRoster(QStringLiteral("ten"), names(10));
    addServerToRoster(QStringLiteral("forty"), names(40));
}

void LayoutDropTest::acceptsServersAndLayoutsOnly_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("server") << "server" << true;
    QTest::newRow("layout") << "layout" << true;
    QTest::newRow("camera") << "camera" << false;
    QTest::newRow("tile") << "layout-swap" << false;
    QTest::newRow("file") << "text/uri-list" << false;
}

void LayoutDropTest::acceptsServersAndLayoutsOnly()
{
    QFETCH(QString, format);
    QFETCH(bool, accepted);
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

void LayoutDropTest::droppedServerFillsTheGrid_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QSize>("before");
    QTest::addColumn<int>("taken");
    QTest::addColumn<QSize>("after");
    QTest::addColumn<bool>("announced");
    QTest::newRow("ten on one cell") << "ten" << QSize(1, 1) << 0 << QSize(4, 4) << true;
    QTest::newRow("forty on one cell") << "forty" << QSize(1, 1) << 0 << QSize(6, 6) << true;
    QTest::newRow("five fit") << "five" << QSize(3, 3) << 0 << QSize(3, 3) << false;
    QTest::newRow("five on 3 columns by 2 rows")
        << "five" << QSize(3, 2) << 5 << QSize(3, 4) << false;
}

void LayoutDropTest::droppedServerFillsTheGrid()
{
    QFETCH(QString, server);
    QFETCH(QSize, before);
    QFETCH(int, taken);
    QFETCH(QSize, after);
    QFETCH(bool, announced);
    LayoutWidget grid;
    const auto layout = API::LayoutPtr::create();
    layout->resize(before.height(), before.width());
    for (int index = 0; index < taken; ++index)
        layout->setCamera(rosterCamera(QStringLiteral("ten"), index + 1), index / before.width(),
                          index % before.width(), 1, 1);
    grid.openLayout(layout);
    QSignalSpy serverAdded(&grid, &LayoutWidget::serverAdded);
    QVERIFY(drop(grid, QStringLiteral("server"), serverData(server), Qt::MoveAction));
    QCOMPARE(QSize(grid.workingLayout()->columns(), grid.workingLayout()->rows()), after);
    QCOMPARE(serverAdded.count(), announced ? 1 : 0);
    const int cameras = server == QLatin1String("five")  ? 5
                        : server == QLatin1String("ten") ? 10
                                                         : 36;
    QCOMPARE(grid.playerCount(), taken + cameras);
}

void LayoutDropTest::camerasBeyondTheGridAreLeftOut()
{
    LayoutWidget grid;
    grid.openLayout(API::LayoutPtr::create());
    drop(grid, QStringLiteral("server"), serverData(QStringLiteral("forty")), Qt::MoveAction);
    QCOMPARE(grid.playerCount(), 36);
    QCOMPARE(grid.workingLayout()->cellAt(0, 0).camera->name(), QStringLiteral("camera 001"));
    QCOMPARE(grid.workingLayout()->cellAt(1, 0).camera->name(), QStringLiteral("camera 007"));
    QCOMPARE(grid.workingLayout()->cellAt(5, 5).camera->name(), QStringLiteral("camera 036"));
}

void LayoutDropTest::unknownServerChangesNothing()
{
    LayoutWidget grid;
    grid.openLayout(API::LayoutPtr::create());
    drop(grid, QStringLiteral("server"), serverData(QStringLiteral("gone")), Qt::MoveAction);
    drop(grid, QStringLiteral("server"), QByteArrayLiteral("\x01"), Qt::MoveAction);
    QCOMPARE(grid.playerCount(), 0);
    QCOMPARE(grid.workingLayout()->rows(), 1);
}

void LayoutDropTest::droppedLayoutIsFoundByName()
{
    const auto layout = API::LayoutPtr::create();
    layout->setName(QString::fromUtf8("Двор"));
    API::CloudAPIClient().addLayout(layout);
    LayoutWidget grid;
    grid.openLayout(API::LayoutPtr::create());
    API::LayoutPtr dropped;
    connect(&grid, &LayoutWidget::layoutDropped, &grid,
            [&dropped](API::LayoutPtr found) { dropped = found; });
    drop(grid, QStringLiteral("layout"), QByteArrayLiteral("no such"), Qt::CopyAction);
    QVERIFY(!dropped);
    drop(grid, QStringLiteral("layout"), layout->name().toUtf8(), Qt::CopyAction);
    QCOMPARE(dropped, layout);
}

QTEST_MAIN(LayoutDropTest)
#include "LayoutDropTest.moc"
