// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <ctime>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/Timeline.h"
#include "tests/GUI/ArchiveWorld.h"
#include "tests/support/LogCapture.h"

using App::Environment;
using GUI::Timeline;
using Tests::ArchiveWorld;
using Tests::LogCapture;
using Tests::record;

namespace {

const QDate day(2026, 3, 10);
constexpr int width = 1030;
constexpr int middle = 515;
constexpr int strip = 20; ///< a y on it
const QColor accent(62, 183, 253);
const QColor background(41, 44, 49);
constexpr int refreshIntervalMs = 120000;

QDateTime at(const QString &text)
{
    return QDateTime(day, QTime::fromString(text, "h:mm:ss"_s));
}

void stopClock(const QDateTime &moment)
{
    Environment::setClock([moment] { return moment; });
}

void sendMouse(Timeline &timeline, QEvent::Type type, double x, Qt::MouseButton button,
               Qt::MouseButtons held)
{
    const QPointF position(x, strip);
    QMouseEvent event(type, position, timeline.mapToGlobal(position.toPoint()), button, held,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(&timeline, &event);
}

void press(Timeline &timeline, double x)
{
    sendMouse(timeline, QEvent::MouseButtonPress, x, Qt::LeftButton, Qt::LeftButton);
}

void move(Timeline &timeline, double x, bool held = false)
{
    sendMouse(timeline, QEvent::MouseMove, x, Qt::NoButton, held ? Qt::LeftButton : Qt::NoButton);
}

void release(Timeline &timeline, double x)
{
    sendMouse(timeline, QEvent::MouseButtonRelease, x, Qt::LeftButton, Qt::NoButton);
}

QList<QDateTime> times(QSignalSpy &spy)
{
    QList<QDateTime> result;
    while (!spy.isEmpty())
        result << spy.takeFirst().first().toDateTime();
    return result;
}

QImage picture(Timeline &timeline)
{
    return timeline.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

bool showsHoverLine(Timeline &timeline, int x)
{
    // Drawn between two columns, it colours both.
    const QImage image = picture(timeline);
    const auto isBlue = [&image](int column) {
        return QColor(image.pixel(column, image.height() - 2)).blue() > accent.blue() / 2;
    };
    return isBlue(x - 1) || isBlue(x);
}

/// Below the scale there is that message and nothing else.
bool showsMessage(Timeline &timeline, const QString &text)
{
    constexpr int belowScale = 22;
    constexpr double metresPerInch = 0.0254;
    QImage expected(timeline.size(), QImage::Format_RGB32);
    // A size in points is the same number of pixels as on the widget.
    expected.setDotsPerMeterX(qRound(timeline.logicalDpiX() / metresPerInch));
    expected.setDotsPerMeterY(qRound(timeline.logicalDpiY() / metresPerInch));
    expected.fill(background);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(timeline.font());
    painter.setPen(QColor(105, 106, 109));
    painter.drawText(QRect(0, 5, timeline.width(), timeline.height()), Qt::AlignCenter, text);
    painter.end();
    const QRect area = timeline.rect().adjusted(0, belowScale, 0, 0);
    return picture(timeline).copy(area) == expected.copy(area);
}

QWidget *tooltip()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->inherits("ZorvaneClient::GUI::TimelineTooltip"))
            return window;
    }
    return nullptr;
}

QList<QAbstractEventDispatcher::TimerInfo> refreshTimers(Timeline &timeline)
{
    QList<QAbstractEventDispatcher::TimerInfo> result;
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&timeline);
    for (const auto &timer : timers) {
        if (timer.interval == refreshIntervalMs)
            result << timer;
    }
    return result;
}

} // namespace

/// The strip as a widget: under the mouse, with cameras that come and go, from day to day.
class TimelineTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(world.start()); }

    void init()
    {
        qputenv("TZ", "Europe/Berlin");
        tzset();
        world.reset();
        stopClock(at("12:00:00"));
        timeline.reset(new Timeline(day));
        timeline->resize(width, timeline->height());
        timeline->show();
        QVERIFY(QTest::qWaitForWindowExposed(timeline.data()));
    }

    void cleanup()
    {
        timeline.reset();
        QVERIFY(!tooltip());
        Environment::setClock({});
    }

    void properties()
    {
        QCOMPARE(timeline->height(), 56);
        QVERIFY(timeline->hasMouseTracking());
        QVERIFY(timeline->testAttribute(Qt::WA_AlwaysShowToolTips));
        QCOMPARE(timeline->property("currentValue").toDateTime(), at("12:00:00"));
        QCOMPARE(timeline->property("startValue").toDateTime(), at("0:00:00"));
        QCOMPARE(timeline->property("endValue").toDateTime(), at("23:59:59"));
        QCOMPARE(timeline->selectionStart(), at("0:00:00"));
        QCOMPARE(timeline->selectionEnd(), at("0:00:00"));
        QCOMPARE(timeline->property("sliderVisible").toBool(), false);
        QCOMPARE(timeline->property("timeFormat").value<Timeline::TimeFormat>(), Timeline::Full);
        QVERIFY(timeline->setProperty("timeFormat", "HourOnly"));
        QCOMPARE(timeline->timeFormat(), Timeline::HourOnly);

        timeline->addMSecs(1500);
        QCOMPARE(timeline->currentValue(), at("12:00:01").addMSecs(500));
        QVERIFY(timeline->setProperty("startValue", at("0:00:00").addSecs(-1)));
        QCOMPARE(timeline->startValue(), at("0:00:00"));
        QVERIFY(timeline->setProperty("endValue", at("23:59:59").addSecs(1)));
        QCOMPARE(timeline->endValue(), at("23:59:59"));
        QCOMPARE(QColor(picture(*timeline).pixel(2, 50)), background);
    }

    void click_data()
    {
        rows<double, double, int, QString>({"pressX", "releaseX", "heldMs", "expected"},
                                           {
                                               // empty: no click
                                               {"still", 515.0, 515.0, 0, "11:59:59"},
                                               {"3 pixels", 515.0, 518.0, 0, "12:04:18"},
                                               {"3 pixels back", 515.0, 512.0, 0, "11:55:40"},
                                               {"4 pixels", 515.0, 519.0, 0, ""},
                                               {"4 pixels back", 515.0, 511.0, 0, ""},
                                               {"332 ms", 515.0, 515.0, 332, "11:59:59"},
                                               {"333 ms", 515.0, 515.0, 333, ""},
                                               {"left end", 15.0, 15.0, 0, "0:00:00"},
                                               {"left margin", 14.0, 14.0, 0, ""},
                                               {"right end", 1015.0, 1015.0, 0, "23:59:59"},
                                               {"right margin", 1016.0, 1016.0, 0, ""},
                                               {"below half a pixel", 16.0, 16.49, 0, "0:01:26"},
                                               {"half a pixel", 14.5, 14.5, 0, "0:00:00"},
                                           });
    }

    void click()
    {
        const auto [pressX, releaseX, heldMs, expected] = row<double, double, int, QString>();
        QSignalSpy played(timeline.data(), &Timeline::playTime);
        const LogCapture log;
        press(*timeline, pressX);
        move(*timeline, releaseX, true);
        stopClock(at("12:00:00").addMSecs(heldMs));
        release(*timeline, releaseX);
        // The whole day has no room for the pan that the move is.
        QCOMPARE(timeline->startValue(), at("0:00:00"));
        if (expected.isEmpty()) {
            QCOMPARE(played.size(), 0);
            QCOMPARE(timeline->currentValue(), at("12:00:00"));
            return;
        }
        QCOMPARE(times(played), QList<QDateTime>{at(expected)});
        QCOMPARE(timeline->currentValue(), at(expected));
        QCOMPARE(log.linesOf("current time:"_s).size(), 1);
    }

    void clickNeedsItsPress()
    {
        QSignalSpy played(timeline.data(), &Timeline::playTime);
        release(*timeline, middle);
        QTest::mouseClick(timeline.data(), Qt::RightButton, Qt::NoModifier, QPoint(middle, strip));
        QVERIFY(played.isEmpty());
        press(*timeline, middle);
        release(*timeline, middle);
        sendMouse(*timeline, QEvent::MouseButtonDblClick, middle, Qt::LeftButton, Qt::LeftButton);
        release(*timeline, middle);
        QCOMPARE(played.size(), 2);
    }

    void panIsNoClick()
    {
        timeline->setStartValue(at("10:00:00"));
        timeline->setEndValue(at("10:10:00"));
        QSignalSpy played(timeline.data(), &Timeline::playTime);
        press(*timeline, middle);
        move(*timeline, middle - 10, true);
        QCOMPARE(timeline->startValue(), at("10:00:06"));
        move(*timeline, middle - 5, true);
        QCOMPARE(timeline->startValue(), at("10:00:03"));
        release(*timeline, middle - 5);
        QVERIFY(played.isEmpty());
        move(*timeline, middle);
        QCOMPARE(timeline->startValue(), at("10:00:03"));
        QCOMPARE(timeline->endValue(), at("10:10:03"));
    }

    void panStopsAtTheDay()
    {
        timeline->setStartValue(at("0:00:02"));
        timeline->setEndValue(at("0:10:02"));
        press(*timeline, middle);
        move(*timeline, 900, true);
        QCOMPARE(timeline->startValue(), at("0:00:00"));
        QCOMPARE(timeline->endValue(), at("0:10:00"));
        // What was pulled too far isn't made up for on the way back.
        move(*timeline, 890, true);
        QCOMPARE(timeline->startValue(), at("0:00:06"));
    }

    void hover()
    {
        QVERIFY(!tooltip()->isVisible());
        // It hangs over the strip, which must not lose the mouse to it.
        QVERIFY(tooltip()->windowFlags().testFlag(Qt::WindowTransparentForInput));
        move(*timeline, middle);
        QVERIFY(showsHoverLine(*timeline, middle));
        QVERIFY(tooltip()->isVisible());
        QCOMPARE(tooltip()->pos(),
                 timeline->mapToGlobal(QPoint(middle - tooltip()->width() / 2 - 1, -8)));
        move(*timeline, 15);
        QVERIFY(showsHoverLine(*timeline, 15));
        // Over the margins the line goes, and the label stays where it was.
        const QPoint place = tooltip()->pos();
        for (const int x : {14, 1016}) {
            move(*timeline, x);
            QVERIFY(!showsHoverLine(*timeline, x));
            QVERIFY(tooltip()->isVisible());
            QCOMPARE(tooltip()->pos(), place);
        }
        move(*timeline, 1015);
        QVERIFY(showsHoverLine(*timeline, 1015));
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(timeline.data(), &leave);
        QVERIFY(!showsHoverLine(*timeline, 1015));
        QVERIFY(!tooltip()->isVisible());
    }

    void cursorShape_data()
    {
        rows<bool, int, bool, int>(
            {"selecting", "x", "held", "shape"},
            {
                {"window", false, middle, false, int(Qt::PointingHandCursor)},
                {"window, held", false, middle, true, int(Qt::ClosedHandCursor)},
                {"left end", false, 15, false, int(Qt::PointingHandCursor)},
                {"left margin", false, 14, false, int(Qt::ArrowCursor)},
                {"right margin", false, 1016, true, int(Qt::ArrowCursor)},
                // The fragment lies on x 415 to 715 of its window.
                {"before the start", true, 403, false, int(Qt::PointingHandCursor)},
                {"start", true, 404, false, int(Qt::SplitHCursor)},
                {"start, inside", true, 426, false, int(Qt::SplitHCursor)},
                {"body", true, 427, false, int(Qt::OpenHandCursor)},
                {"body, held", true, 703, true, int(Qt::ClosedHandCursor)},
                {"end, held", true, 704, true, int(Qt::SplitHCursor)},
                {"end", true, 726, false, int(Qt::SplitHCursor)},
                {"after the end", true, 727, true, int(Qt::ClosedHandCursor)},
                {"margin, selecting", true, 14, false, int(Qt::ArrowCursor)},
            });
    }

    void cursorShape()
    {
        const auto [selecting, x, held, shape] = row<bool, int, bool, int>();
        if (selecting)
            QVERIFY(selectFragment());
        move(*timeline, x, held);
        QCOMPARE(int(timeline->cursor().shape()), shape);
    }

    void dragsTheSelection()
    {
        QVERIFY(selectFragment());
        QSignalSpy played(timeline.data(), &Timeline::playTime);
        const auto drag = [this](int from, int to) {
            move(*timeline, from);
            press(*timeline, from);
            move(*timeline, to, true);
            release(*timeline, to);
            move(*timeline, to + 50);
        };
        drag(415, 500);
        QCOMPARE(timeline->selectionStart(), at("12:01:25"));
        QCOMPARE(timeline->selectionEnd(), at("12:05:00"));
        drag(600, 610);
        QCOMPARE(timeline->selectionStart(), at("12:01:35"));
        QCOMPARE(timeline->selectionEnd(), at("12:05:10"));
        timeline->setSelectionEditable(false);
        drag(600, 610);
        QCOMPARE(timeline->selectionStart(), at("12:01:35"));
        QCOMPARE(timeline->startValue(), at("11:53:20"));
        QVERIFY(played.isEmpty());

        timeline->leaveSelectionMode();
        drag(600, 610);
        QCOMPARE(timeline->selectionStart(), at("12:01:35"));
        QCOMPARE(timeline->startValue(), at("11:53:10"));
    }

    void clickInSelectionMode()
    {
        QVERIFY(selectFragment());
        QSignalSpy played(timeline.data(), &Timeline::playTime);
        for (const int x : {600, 300}) {
            move(*timeline, x);
            press(*timeline, x);
            release(*timeline, x);
        }
        QCOMPARE(times(played), QList<QDateTime>{at("11:58:05")});
    }

    void recordsArrive()
    {
        world.setRecords(1, {record(day, QTime(10, 0), QTime(14, 0))});
        QSignalSpy updated(timeline.data(), &Timeline::recordsUpdated);
        timeline->addCamera(API::CameraPtr());
        QCOMPARE(timeline->cameraCount(), 0);
        const API::CameraPtr camera = world.localCamera(1);
        timeline->addCamera(camera);
        timeline->addCamera(camera);
        QCOMPARE(timeline->cameraCount(), 1);
        QVERIFY(timeline->hasCamera(camera->globalId()));
        QVERIFY(showsMessage(*timeline, "Loading records..."_s));
        const QImage before = picture(*timeline);
        QTRY_COMPARE(updated.size(), 1);
        QVERIFY(!showsMessage(*timeline, QString()));
        // The bar spans from 10 to 14 o'clock, on x 431 to 598.
        const QImage after = picture(*timeline);
        QCOMPARE(QColor(after.pixel(429, 30)), background);
        QVERIFY(QColor(after.pixel(433, 30)) != background);
        QVERIFY(QColor(after.pixel(596, 40)) != background);
        QCOMPARE(QColor(after.pixel(600, 40)), background);
        QCOMPARE(world.requestedDays(1), QList<QDate>{day});

        timeline->showText("Hidden by records"_s);
        QCOMPARE(picture(*timeline), after);
        timeline->clear();
        QCOMPARE(updated.size(), 2);
        QCOMPARE(timeline->cameraCount(), 0);
        QVERIFY(showsMessage(*timeline, "Hidden by records"_s));
        timeline->hideText();
        QVERIFY(showsMessage(*timeline, QString()));
    }

    void messages_data()
    {
        rows<bool, bool, QString>({"shared", "refused", "expected"},
                                  {
                                      {"no records", true, false, "No records"},
                                      {"not shared", false, false, "Archive is not shared"},
                                      {"refused", true, true, "Cannot load records"},
                                  });
    }

    void messages()
    {
        const auto [shared, refused, expected] = row<bool, bool, QString>();
        if (refused)
            world.refuseRecords(1);
        QSignalSpy updated(timeline.data(), &Timeline::recordsUpdated);
        timeline->addCamera(world.cloudCamera(1, shared));
        QTRY_VERIFY(showsMessage(*timeline, expected));
        QVERIFY(updated.isEmpty());
        // Another camera's records take the message away.
        QVERIFY(addCamera(2, {record(day, QTime(1, 0), QTime(2, 0))}));
        QVERIFY(!showsMessage(*timeline, expected));
    }

    void failureKeepsTheRecords()
    {
        const API::CameraPtr camera =
            world.loadedCamera(1, day, {record(day, QTime(10, 0), QTime(14, 0))});
        world.refuseRecords(1);
        QSignalSpy failed(camera.data(), &API::Camera::recordsError);
        timeline->addCamera(camera);
        QTRY_COMPARE(failed.size(), 1);
        QCOMPARE(timeline->playlistForCameras(at("0:00:00")).size(), 1);
        QVERIFY(!showsMessage(*timeline, "Cannot load records"_s));
        timeline->removeCamera(camera->globalId());
        QVERIFY(showsMessage(*timeline, "Cannot load records"_s));
    }

    void removedCameraIsNotHeard()
    {
        const API::CameraPtr first = addCamera(1, {});
        const API::CameraPtr second = addCamera(2, {});
        QVERIFY(first && second);
        timeline->setActiveCameraId(first->globalId());
        QSignalSpy updated(timeline.data(), &Timeline::recordsUpdated);
        timeline->removeCamera(first->globalId());
        QCOMPARE(updated.size(), 1);
        QVERIFY(!timeline->activeCamera());
        QVERIFY(!timeline->hasCamera(first->globalId()));
        timeline->showText("Still here"_s);
        QVERIFY(ArchiveWorld::load(first, day));
        QVERIFY(showsMessage(*timeline, "Still here"_s));
        QVERIFY(ArchiveWorld::load(second, day));
        QVERIFY(showsMessage(*timeline, "No records"_s));
        // One that comes back is heard once.
        world.setRecords(1, {record(day, QTime(10, 0), QTime(14, 0))});
        updated.clear();
        timeline->addCamera(first);
        QTRY_COMPARE(updated.size(), 1);
    }

    void refresh()
    {
        const API::CameraPtr camera = addCamera(1, {});
        QVERIFY(camera);
        QSignalSpy received(camera.data(), &API::Camera::recordsChanged);
        world.setRecords(1, {record(day, QTime(10, 0), QTime(14, 0))});
        timeline->hide();
        const auto timers = refreshTimers(*timeline);
        QCOMPARE(timers.size(), 1);
        QTimerEvent expired(timers.first().timerId);
        QCoreApplication::sendEvent(timeline.data(), &expired);
        QTRY_COMPARE(received.size(), 1);
        QCOMPARE(world.requestedDays(1), (QList<QDate>{day, day}));
        QCOMPARE(timeline->playlistForCameras(at("0:00:00")).size(), 1);
    }

    void changeOfDate()
    {
        const QDate next = day.addDays(1);
        QVERIFY(addCamera(1, {record(next, QTime(10, 0), QTime(14, 0))}));
        timeline->setStartValue(at("9:00:00"));
        timeline->setEndValue(at("15:00:00"));
        QVERIFY(showsMessage(*timeline, "No records"_s));
        QSignalSpy updated(timeline.data(), &Timeline::recordsUpdated);
        timeline->changeDate(day);
        QCOMPARE(world.requestedDays(1).size(), 1);
        timeline->changeDate(next);
        QCOMPARE(timeline->startValue(), QDateTime(next, QTime(9, 0)));
        QCOMPARE(timeline->endValue(), QDateTime(next, QTime(15, 0)));
        QTRY_COMPARE(updated.size(), 1);
        QCOMPARE(world.requestedDays(1).last(), next);
        QVERIFY(QColor(picture(*timeline).pixel(middle, 30)) != background);
    }

    void activeCameraAndExport()
    {
        const QList<API::ArchiveRecord> records{record(day, QTime(10, 0), QTime(14, 0))};
        world.setRecords(1, records);
        world.setRecords(2, records);
        const API::CameraPtr local = world.localCamera(1);
        const API::CameraPtr cloud = world.cloudCamera(2);
        QVERIFY(addCamera(local));
        QVERIFY(addCamera(cloud));
        QSignalSpy enabled(timeline.data(), &Timeline::exportEnabled);
        const auto repainted = [this, &enabled] {
            enabled.clear();
            timeline->repaint();
            return enabled.isEmpty() ? QVariant() : enabled.last().first();
        };
        timeline->setActiveCameraId(cloud->globalId());
        QCOMPARE(timeline->activeCamera(), cloud);
        QCOMPARE(repainted(), QVariant(false));
        timeline->setActiveCameraId(local->globalId());
        QVERIFY(timeline->canExport());
        QCOMPARE(repainted(), QVariant(true));
        QCOMPARE(repainted(), QVariant());
        // The day is that of the play cursor.
        timeline->setCurrentValue(at("12:00:00").addDays(1));
        QVERIFY(!timeline->canExport());
        timeline->setCurrentValue(at("12:00:00"));
        timeline->setActiveCameraId({"unknown"_s, 1});
        QVERIFY(!timeline->activeCamera());
        QVERIFY(!timeline->canExport());
    }

    void clockChanges_data()
    {
        rows<QDate, int>({"date", "hours"}, {
                                                {"23 hours", QDate(2026, 3, 29), 23},
                                                {"25 hours", QDate(2026, 10, 25), 25},
                                            });
    }

    void clockChanges()
    {
        const auto [date, hours] = row<QDate, int>();
        // A record of 50 minutes in each hour that passes.
        const auto records = Tests::evenRecords(date, hours, 3600, 3000);
        timeline->changeDate(date);
        QVERIFY(addCamera(1, records));
        QSignalSpy played(timeline.data(), &Timeline::playTime);
        QDateTime last = date.startOfDay().addSecs(-1);
        for (int x = 15; x <= 1015; x += 5) {
            press(*timeline, x);
            release(*timeline, x);
            QVERIFY(last < timeline->currentValue());
            last = timeline->currentValue();
            QCOMPARE(last.date(), date);
            const qint64 passed = date.startOfDay().secsTo(last);
            const qint64 begun = passed % 3600 < 3000 ? passed / 3600 : passed / 3600 + 1;
            const GUI::Playlist playlist = timeline->playlistForCameras(last);
            QCOMPARE(playlist.size(), int(hours - begun));
            for (int index = 1; index < playlist.size(); ++index)
                QVERIFY(playlist.at(index - 1)->end < playlist.at(index)->start);
        }
        QCOMPARE(played.size(), 201);
        picture(*timeline);
    }

private:
    /// Puts a camera on the strip and waits for what it received; null if it didn't.

    API::CameraPtr addCamera(const API::CameraPtr &camera)
    {
        QSignalSpy received(camera.data(), &API::Camera::recordsChanged);
        timeline->addCamera(camera);
        return received.wait(30000) ? camera : API::CameraPtr();
    }

    API::CameraPtr addCamera(int id, const QList<API::ArchiveRecord> &records)
    {
        world.setRecords(id, records);
        return addCamera(world.localCamera(id));
    }

    /// Marks 12:00:00 to 12:05:00 in a window where a pixel is a second: x 415 to 715.

    bool selectFragment()
    {
        const API::CameraPtr camera = addCamera(1, {record(day, QTime(10, 0), QTime(14, 0))});
        if (!camera)
            return false;
        timeline->setActiveCameraId(camera->globalId());
        timeline->setCurrentValue(at("12:02:30"));
        // Tighter than what the fragment would be shown in, and with the fragment inside.
        timeline->setStartValue(at("11:53:20"));
        timeline->setEndValue(at("12:10:00"));
        return timeline->enterSelectionMode(true, false) &&
               timeline->selectionStart() == at("12:00:00");
    }

    ArchiveWorld world;
    QScopedPointer<Timeline> timeline;
};

QTEST_MAIN(TimelineTest)
#include "TimelineTest.moc"
