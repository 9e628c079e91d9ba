// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/Layout.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Player/PlayerNotification.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/ArchiveWorld.h"
#include "tests/support/ScriptedChild.h"

using GUI::LayoutWidget;
using GUI::PlayerNotification;

namespace {

const QDate day(2015, 3, 3);
constexpr int deadline = 30'000;

QDateTime at(int hour, int minute)
{
    return QDateTime(day, QTime(hour, minute));
}

} // namespace

/// Exports through the grid, and what it tells of them.
class LayoutExportTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(world.start()); }

    void forwards()
    {
        ScriptedChild child({"print export-start\\nexport-percent 7\\n", "wait go",
                             "print export-done\\n", "wait on", "print export-error\\n"});
        const API::CameraPtr door = camera(1);
        LayoutWidget grid;
        const auto layout = API::LayoutPtr::create();
        layout->setCamera(door, 0, 0, 1, 1);
        grid.openLayout(layout);
        QSignalSpy started(&grid, &LayoutWidget::exportStarted);
        QSignalSpy percent(&grid, &LayoutWidget::exportPercentDone);
        QSignalSpy done(&grid, &LayoutWidget::exportDone);
        QSignalSpy error(&grid, &LayoutWidget::exportError);
        grid.exportArchive(door, at(10, 0), at(10, 5));
        QTRY_COMPARE_WITH_TIMEOUT(percent.size(), 1, deadline);
        QCOMPARE(percent.first().first().toInt(), 7);
        QCOMPARE(started.size(), 1);
        child.tell("go"_s);
        QTRY_COMPARE_WITH_TIMEOUT(done.size(), 1, deadline);
        child.tell("on"_s);
        QTRY_COMPARE_WITH_TIMEOUT(error.size(), 1, deadline);
        const QString path = child.starts().first().last();
        QCOMPARE(done.first().first().toString(), path);
        QCOMPARE(error.first().first().toString(), path);
        QCOMPARE(grid.findChildren<PlayerNotification *>().size(), 2);
    }

    void onlyTheCamerasTile()
    {
        ScriptedChild child({"print export-start\\n"});
        const API::CameraPtr door = camera(1);
        const API::CameraPtr gate = camera(2);
        LayoutWidget grid;
        const auto layout = API::LayoutPtr::create();
        layout->setCamera(door, 0, 0, 1, 1);
        grid.openLayout(layout);
        QSignalSpy started(&grid, &LayoutWidget::exportStarted);
        grid.exportArchive(gate, at(10, 0), at(10, 5));
        grid.cancelExport(gate);
        grid.exportArchive(door, at(10, 0), at(10, 5));
        QTRY_COMPARE_WITH_TIMEOUT(started.size(), 1, deadline);
        QCOMPARE(child.starts().size(), 1);
        QVERIFY(child.starts().first().last().contains("Camera 1"_s));
        grid.cancelExport(gate);
        QVERIFY(ScriptedChild::isAlive(child.lastProcessId()));
        grid.cancelExport(door);
        QVERIFY(!ScriptedChild::isAlive(child.lastProcessId()));
    }

    void hints_data()
    {
        rows<bool, QString>({"isDone", "text"},
                            {
                                {"done", true,
                                 "Record saved. <a style=\"color: white\" href=\"/films/of the "
                                 "house\">Open folder</a>"},
                                {"error", false, "Error while exporting."},
                            });
    }

    void hints()
    {
        const auto [isDone, text] = row<bool, QString>();
        const API::CameraPtr door = camera(1);
        LayoutWidget grid;
        const auto layout = API::LayoutPtr::create();
        layout->setCamera(door, 0, 0, 1, 1);
        grid.openLayout(layout);
        const QString path = "/films/of the house/Door.mp4"_s;
        if (isDone)
            emit grid.player(door)->exportDone(path);
        else
            emit grid.player(door)->exportError(path);
        const auto hints = grid.findChildren<PlayerNotification *>();
        QCOMPARE(hints.size(), 1);
        QCOMPARE(hints.first()->findChild<QLabel *>("messageLabel"_s)->text(), text);
        QCOMPARE(hints.first()->property("error").toBool(), !isDone);
    }

private:
    API::CameraPtr camera(int id)
    {
        const API::CameraPtr camera =
            world.loadedCamera(id, day, {record(day, QTime(10, 0), QTime(11, 0))});
        camera->setName("Camera %1"_s.arg(id));
        return camera;
    }

    ArchiveWorld world;
};

QTEST_MAIN(LayoutExportTest)
#include "LayoutExportTest.moc"
