// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "GUI/ControlPanel.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/PlayerNotification.h"
#include "GUI/Timeline.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/ArchiveWorld.h"
#include "tests/support/ScriptedChild.h"

namespace ZorvaneClient::Tests {

using namespace ZorvaneClient::GUI;
using GUI::Player::VideoWidget;

inline const QDate day(2026, 3, 5);
constexpr int startDeadlineMs = 20000;

inline QDateTime moment(const QString &text)
{
    return QDateTime(day, QTime::fromString(text, "h:mm:ss"_s));
}

/// What a player was started for: camera, moment and speed as in "1 10:05:00 4x", or "1 live".
inline QString wordsOf(const QStringList &arguments)
{
    const QUrlQuery query(arguments.value(0).section('?', 1));
    const QString camera = query.queryItemValue("camera"_s);
    if (!query.hasQueryItem("startTime"_s))
        return camera + " live";
    const auto start =
        QDateTime::fromSecsSinceEpoch(query.queryItemValue("startTime"_s).toLongLong());
    return camera + start.toString(start.date() == day ? " hh:mm:ss " : " yyyy-MM-dd hh:mm:ss ") +
           query.queryItemValue("speed"_s) + 'x';
}

/// A window whose cameras have archives that the test writes; it is eleven at night.
class ArchiveWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(world.start()); }

    void init()
    {
        world.reset();
        clock.reset(new FakeClock(moment("23:00:00")));
        child.reset(new ScriptedChild({"wait never"}));
        window.reset(new MainWindow);
        startsSeen = 0;
    }

    void cleanup()
    {
        window.reset();
        child.reset();
        clock.reset();
        shown.clear();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

protected:
    /// Opens `cameras` side by side, with free cells behind them, and waits until the strip has
    /// their records.
    void open(const QList<API::CameraPtr> &cameras, int freeCells = 0)
    {
        shown = cameras;
        const auto layout = API::LayoutPtr::create();
        layout->resize(1, cameras.size() + freeCells);
        for (int column = 0; column < cameras.size(); ++column)
            layout->setCamera(cameras.at(column), 0, column, 1, 1);
        QSignalSpy updated(timeline(), &Timeline::recordsUpdated);
        QVERIFY(window->openLayout(layout));
        QCOMPARE(timeline()->cameraCount(), cameras.size());
        QStringList live;
        for (const API::CameraPtr &camera : cameras) {
            if (camera->isArchiveShared())
                live.append(QString::number(camera->id()) + " live");
        }
        QTRY_VERIFY(updated.size() >= live.size());
        expectStarts(live);
    }

    /// Two cameras play from 10:05.
    void playTwo(int freeCells = 0)
    {
        open({camera(1, {"10:00:00-11:00:00"}), camera(2, {"10:00:00-11:00:00"})}, freeCells);
        window->onPlayArchive(moment("10:05:00"));
        expectStarts({"1 10:05:00 1x", "2 10:05:00 1x"});
    }

    API::CameraPtr camera(int id, const QStringList &spans)
    {
        QList<API::ArchiveRecord> records;
        for (const QString &span : spans)
            records.append({moment(span.section('-', 0, 0)), moment(span.section('-', 1))});
        return world.loadedCamera(id, day, records);
    }

    VideoWidget *tile(int index) const { return grid()->player(shown.value(index)); }
    LayoutWidget *grid() const { return window->findChild<LayoutWidget *>(); }
    Timeline *timeline() const { return window->findChild<Timeline *>(); }
    ControlPanel *panel() const { return window->findChild<ControlPanel *>(); }
    void press(const QString &name) { panel()->findChild<QPushButton *>(name)->click(); }
    QString textOf(const QString &name) const { return panel()->findChild<QLabel *>(name)->text(); }

    QString hinted() const
    {
        const auto *hint = grid()->findChild<PlayerNotification *>();
        return hint ? hint->findChild<QLabel *>("messageLabel"_s)->text() +
                          (hint->property("error").toBool() ? " in red" : "")
                    : QString();
    }

    /// The page that a stack of pages shows, unless it is hidden.
    QString pageOf(const QString &name) const
    {
        const auto *stack = window->findChild<QStackedWidget *>(name);
        return stack->isHidden() ? QString() : stack->currentWidget()->objectName();
    }

    /// Starts of players, by camera, since the last expectStarts().
    QStringList newStarts() const
    {
        QStringList started;
        for (const QStringList &start : child->starts().mid(startsSeen))
            started.append(wordsOf(start));
        started.sort();
        return started;
    }

    /// Waits for these starts of players; there must be no other since the last call.
    void expectStarts(const QStringList &expected)
    {
        QTRY_VERIFY_WITH_TIMEOUT(newStarts().size() >= expected.size(), startDeadlineMs);
        QCOMPARE(newStarts(), expected);
        startsSeen += int(expected.size());
    }

    ArchiveWorld world;
    QScopedPointer<FakeClock> clock;
    QScopedPointer<ScriptedChild> child;
    QScopedPointer<MainWindow> window;
    QList<API::CameraPtr> shown;
    int startsSeen = 0;
};

} // namespace ZorvaneClient::Tests
