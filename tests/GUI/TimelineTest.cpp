// SPDX-License-Identifier: MIT
#include "GUI/TimelineTooltip.h"
#include "tests/GUI/TimelineStrip.h"

using GUI::Timeline;

namespace {

/// The left button in words: "press 515 drag 505 release 505"; "move" is without it.
void use(Timeline &timeline, const QString &mouse)
{
    const QHash<QString, QEvent::Type> types{{"press", QEvent::MouseButtonPress},
                                             {"again", QEvent::MouseButtonDblClick},
                                             {"release", QEvent::MouseButtonRelease}};
    const QStringList words = mouse.split(' ');
    for (int index = 0; index + 1 < words.size(); index += 2) {
        const QEvent::Type type = types.value(words.at(index), QEvent::MouseMove);
        const bool isHeld = words.at(index) != "release" && words.at(index) != "move";
        const QPointF position(words.at(index + 1).toDouble(), 20);
        QMouseEvent event(type, position, timeline.mapToGlobal(position.toPoint()),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          isHeld ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&timeline, &event);
    }
}

QString selectionOf(const Timeline &timeline)
{
    return textOf(timeline.selectionStart(), timeline.selectionEnd());
}

GUI::TimelineTooltip *tooltip()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (auto *found = qobject_cast<GUI::TimelineTooltip *>(window))
            return found;
    }
    return nullptr;
}

} // namespace

/// The strip as a widget: under the mouse, with cameras that come and go, from day to day.
class TimelineTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(world.begin());
        timeline.reset(new Timeline(stripDay));
        QVERIFY(showStrip(*timeline));
    }

    void cleanup()
    {
        timeline.reset();
        QVERIFY(!tooltip());
    }

    void movesTheWindow_data()
    {
        const QString all = "0:00 to 23:59:59";
        const QString hour = "12:00 to 13:00";
        const QString wider = "11:24:15 to 13:35:45";
        const QString noon = "12:00 to 14:00";
        const QString tenHours = "2:00 to 12:00";
        const QString tenMinutes = "10:00 to 10:10";
        // Level -1: none is told.
        rows<QString, QString, QString, int>(
            {"window", "action", "expected", "level"},
            {{"a notch in", all, "wheel 515 120", "0:35:44 to 23:24:14", 5},
             {"small in", hour, "wheel 515 119", wider, 92},
             {"no turn, but no swipe", hour, "wheel 515 0", wider, 92},
             {"sideways", hour, "wheel 515 0/120", hour, -1},
             {"fingers put on", hour, "wheel 515 0 touch", hour, -1},
             {"out of the whole day", all, "wheel 515 -120", all, -1},
             {"out, to the day's begin", "0:10 to 1:10", "zoomOut", "0:00 to 1:45:45", 93},
             {"left margin", noon, "wheel 15 120", "4:51 to 5:39:30", 97},
             {"right of it", noon, "wheel 16 120", "12:00:04 to 12:48:35", 97},
             {"left of the day", all, "wheel -50 120", "0:00 to 22:48:29", 5},
             {"twice the margin", noon, "wheel 1000 120", "19:08:59 to 19:57:29", 97},
             {"left of that", noon, "wheel 999 120", "13:10:20 to 13:58:51", 97},
             {"4789 s, in", "10:00 to 11:19:49", "zoomIn", "10:00 to 11:19:49", -1},
             {"4790 s, in", "10:00 to 11:19:50", "zoomIn", "10:35:45 to 10:44:05", 100},
             {"below half a level", "10:00 to 11:28:38", "zoomIn", "10:35:45 to 10:52:53", 100},

             {"Ctrl, 120", hour, "wheel 515 120 Ctrl", "12:02:30 to 13:02:30", -1},
             {"Ctrl, 119", hour, "wheel 515 119 Ctrl", "11:57:30 to 12:57:30", -1},
             {"Ctrl and Shift", hour, "wheel 515 -120 Ctrl Shift", wider, 92},
             {"little room before", "0:10 to 10:10", "wheel 515 -120 Ctrl", "0:00 to 10:00", -1},
             {"after", "13:50 to 23:50", "wheel 515 120 Ctrl", "13:59:59 to 23:59:59", -1},
             {"left", tenHours, "scrollLeft", "2:25 to 12:25", -1},
             {"right", tenHours, "scrollRight", "1:35 to 11:35", -1},

             {"pan, two seconds", tenMinutes, "press 515 drag 513", "10:00:02 to 10:10:02", -1},
             {"less than one", tenMinutes, "press 515 drag 516", tenMinutes, -1},
             {"one second back", tenMinutes, "press 515 drag 517", "9:59:59 to 10:09:59", -1},
             {"near the begin", "0:00:30 to 0:10:30", "press 515 drag 900", "0:00 to 0:10", -1},
             // What was pulled too far isn't made up for on the way back.
             {"and back", "0:01 to 0:11", "press 9 drag 900 drag 890", "0:00:06 to 0:10:06", -1},
             {"near its end", "23:49 to 23:59", "press 515 drag 100", "23:49:59 to 23:59:59", -1},
             {"half", "12:00 to 12:16:40", "press 15 drag -9.6", "12:00:25 to 12:17:05", -1}});
    }

    void movesTheWindow()
    {
        const auto [window, action, expected, level] = row<QString, QString, QString, int>();
        QVERIFY(showsCamerasIn(window));

        QSignalSpy zoomed(timeline.data(), &Timeline::zoomed);
        const QStringList words = action.split(' ');
        const bool isPan = words.first() == "press";
        if (words.first() == "wheel") {
            // "wheel 515 120 Ctrl": where, how far and with what; "0/120" is sideways.
            const QPointF position(words.at(1).toInt(), 20);
            const QStringList turn = words.at(2).split('/');
            Qt::KeyboardModifiers keys;
            keys.setFlag(Qt::ControlModifier, words.contains("Ctrl"));
            keys.setFlag(Qt::ShiftModifier, words.contains("Shift"));
            QWheelEvent event(position, timeline->mapToGlobal(position.toPoint()), {},
                              {turn.value(1).toInt(), turn.first().toInt()}, Qt::NoButton, keys,
                              words.contains("touch") ? Qt::ScrollBegin : Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(timeline.data(), &event);
            QVERIFY(event.isAccepted());
        } else if (isPan) {
            use(*timeline, action);
        } else {
            QVERIFY(QMetaObject::invokeMethod(timeline.data(), action.toLatin1().constData()));
        }
        QCOMPARE(windowOf(*timeline), expected);
        QCOMPARE(zoomed.isEmpty() ? -1 : zoomed.first().first().toInt(), level);
        // The records went along.
        const QImage goal = drawnAnew(expected, isPan ? "move " + words.last() : QString());
        QTRY_COMPARE(onScreen(*timeline), goal);
    }

    void aFragmentComesIntoView_data()
    {
        rows<QString, QString, QString>(
            {"window", "cursor", "expected"},
            {{"on", "8:00 to 8:30", "14:02:30", "13:47:30 to 14:17:30"},
             {"to the day's begin", "20:00 to 20:30", "0:07:30", "0:00 to 0:22:30"}});
    }

    void aFragmentComesIntoView()
    {
        const auto [window, cursor, expected] = row<QString, QString, QString>();
        QVERIFY(showsCamerasIn(window));
        timeline->setCurrentValue(at(cursor));
        QVERIFY(timeline->enterSelectionMode(true, false));
        QCOMPARE(windowOf(*timeline), window);
        timeline->leaveSelectionMode();
        QTRY_COMPARE(windowOf(*timeline), expected);
        // The records went along.
        const QImage goal = drawnAnew(expected, {});
        QTRY_COMPARE(onScreen(*timeline), goal);
    }

    void zoomsToALevel()
    {
        QString levels;
        connect(timeline.data(), &Timeline::zoomed, timeline.data(),
                [&levels](int level) { levels += QString::number(level) + ' '; });
        const auto levelsTo = [this, &levels](int level) {
            levels.clear();
            timeline->zoom(level);
            return levels;
        };
        QCOMPARE(levelsTo(12), "5 10 15 "_s);
        QCOMPARE(levelsTo(15), ""_s);
        QCOMPARE(levelsTo(14), "10 "_s);
        QCOMPARE(levelsTo(0), "5 0 "_s);
        // Beyond the ends it stops where nothing moves.
        QVERIFY(levelsTo(1000).endsWith(" 100 "));
    }

    void clicks_data()
    {
        const QString still = "press 515 release 515";
        rows<QString, int, QString, int>(
            {"mouse", "heldMs", "expected", "plays"},
            {{"still", still, 332, "11:59:59", 1},
             {"long", still, 333, "12:00", 0},
             {"3 pixels", "press 515 drag 518 release 518", 0, "12:04:18", 1},
             {"4 pixels back", "press 515 drag 511 release 511", 0, "12:00", 0},
             {"left end", "press 14.5 release 14.5", 0, "0:00", 1},
             {"left margin", "press 14 release 14", 0, "12:00", 0},
             {"right margin", "press 1016 release 1016", 0, "12:00", 0},
             {"no press", "release 515", 0, "12:00", 0},
             {"two", still + " again 515 release 515", 0, "11:59:59", 2}});
    }

    void clicks()
    {
        const auto [mouse, heldMs, expected, plays] = row<QString, int, QString, int>();
        QTest::mouseClick(timeline.data(), Qt::RightButton, Qt::NoModifier, QPoint(400, 20));
        QSignalSpy played(timeline.data(), &Timeline::playTime);
        const int lastWord = mouse.lastIndexOf("release");
        use(*timeline, mouse.left(lastWord));
        world.clock.time = world.clock.time.addMSecs(heldMs);
        use(*timeline, mouse.mid(lastWord));
        QCOMPARE(played.size(), plays);
        QCOMPARE(textOf(timeline->currentValue()), expected);
        if (plays > 0)
            QCOMPARE(played.last().first().toDateTime(), timeline->currentValue());
    }

    void hover()
    {
        GUI::TimelineTooltip *const tip = tooltip();
        // It hangs over the strip, which must not lose the mouse to it.
        QVERIFY(tip->windowFlags().testFlag(Qt::WindowTransparentForInput));
        const QImage without = picture(*timeline);
        // Inside the round corners, which the window system mixes with what lies below.
        const QRect text = tip->rect().adjusted(4, 3, -4, -7);
        const auto shows = [&](int x, const QTime &time) {
            GUI::TimelineTooltip label;
            label.setTime(time);
            const QRect line(x - 1, 50, 2, 6);
            return picture(*timeline).copy(line) != without.copy(line) && tip->isVisible() &&
                   onScreen(*tip).copy(text) == picture(label).copy(text) &&
                   tip->pos() == timeline->mapToGlobal(QPoint(x - label.width() / 2 - 1, -8));
        };
        for (const auto &[x, time] :
             {qMakePair(515, "11:59:59"_s), {1015, "23:59:59"_s}, {15, "0:00"_s}}) {
            use(*timeline, "move %1"_s.arg(x));
            QTRY_VERIFY2(shows(x, at(time).time()), qPrintable(time));
        }
        // Over the margins the line goes, and the label stays where it was.
        const QPoint place = tip->pos();
        for (const QString &move : {"move 14"_s, "move 1016"_s}) {
            use(*timeline, move);
            QCOMPARE(picture(*timeline), without);
            QVERIFY(tip->isVisible());
            QCOMPARE(tip->pos(), place);
        }
        use(*timeline, "move 300");
        QCoreApplication::postEvent(timeline.data(), new QEvent(QEvent::Leave));
        QTRY_COMPARE(picture(*timeline), without);
        QVERIFY(!tip->isVisible());
    }

    void cursorShape_data()
    {
        rows<bool, int, bool, Qt::CursorShape>(
            {"selecting", "x", "held", "shape"},
            {{"window", false, 515, false, Qt::PointingHandCursor},
             {"window, held", false, 515, true, Qt::ClosedHandCursor},
             {"left margin", false, 14, false, Qt::ArrowCursor},
             {"right margin", false, 1016, true, Qt::ArrowCursor},
             // The fragment lies on x 415 to 715 of its window.
             {"before the start", true, 403, false, Qt::PointingHandCursor},
             {"start", true, 404, false, Qt::SplitHCursor},
             {"start, inside", true, 426, false, Qt::SplitHCursor},
             {"body", true, 427, false, Qt::OpenHandCursor},
             {"body, held", true, 703, true, Qt::ClosedHandCursor},
             {"end, held", true, 704, true, Qt::SplitHCursor},
             {"end", true, 726, false, Qt::SplitHCursor},
             {"after the end", true, 727, true, Qt::ClosedHandCursor}});
    }

    void cursorShape()
    {
        const auto [selecting, x, held, shape] = row<bool, int, bool, Qt::CursorShape>();
        if (selecting)
            QVERIFY(selectFragment());
        use(*timeline, (held ? "drag %1"_s : "move %1"_s).arg(x));
        QCOMPARE(timeline->cursor().shape(), shape);
    }

    void theSelectionUnderTheMouse()
    {
        QVERIFY(selectFragment());
        QSignalSpy played(timeline.data(), &Timeline::playTime);
        const auto drag = [this](int from, int to) {
            use(*timeline, "move %1 press %1 drag %2 release %2 move 900"_s.arg(from).arg(to));
            return selectionOf(*timeline);
        };
        QCOMPARE(drag(415, 500), "12:01:25 to 12:05"_s);
        QCOMPARE(drag(600, 610), "12:01:35 to 12:05:10"_s);
        timeline->setSelectionEditable(false);
        QCOMPARE(drag(600, 610), "12:01:35 to 12:05:10"_s);
        QCOMPARE(timeline->startValue(), at("11:53:20"));
        // A click on it is none, one beside it is.
        use(*timeline, "move 600 press 600 release 600");
        QVERIFY(played.isEmpty());
        use(*timeline, "move 300 press 300 release 300");
        QCOMPARE(played.takeFirst().first().toDateTime(), at("11:58:05"));

        timeline->leaveSelectionMode();
        QCOMPARE(drag(600, 610), "12:01:35 to 12:05:10"_s);
        QCOMPARE(timeline->startValue(), at("11:53:10"));
        // The next one can be moved again.
        QVERIFY(timeline->enterSelectionMode(true, true));
        QCOMPARE(drag(600, 610), "12:01:45 to 12:05:20"_s);
    }

    /// What changes is painted by itself, without anything else that would paint the strip.
    void everyChangeIsPainted()
    {
        QVERIFY(selectFragment());
        const API::CameraPtr second = putCamera(*timeline, world, 2, recordsOf("11:55 to 12:00"));
        const QList<QPair<const char *, std::function<void()>>> changes{
            {"fragment goes", [this] { timeline->leaveSelectionMode(); }},
            {"fragment", [this] { QVERIFY(timeline->enterSelectionMode(true, true)); }},
            {"active camera", [&] { timeline->setActiveCameraId(second->globalId()); }},
            {"start", [this] { timeline->setStartValue(at("11:50")); }},
            {"end", [this] { timeline->setEndValue(at("22:00")); }},
            {"cursor", [this] { timeline->setSliderVisible(true); }},
            {"cursor's time", [this] { timeline->setCurrentValue(at("12:10")); }},
            {"time that passes", [this] { timeline->addMSecs(300000); }},
            {"click", [this] { use(*timeline, "press 300 release 300"); }},
            {"hover line", [this] { use(*timeline, "move 700"); }},
            {"mouse gone",
             [this] { QCoreApplication::postEvent(timeline.data(), new QEvent(QEvent::Leave)); }},
            {"format of times", [this] { timeline->setTimeFormat(Timeline::HourOnly); }},
            {"a camera gone", [&] { timeline->removeCamera(second->globalId()); }},
            {"no camera", [this] { timeline->clear(); }},
            {"message", [this] { timeline->showText("something"); }},
            {"no message", [this] { timeline->hideText(); }}};
        for (const auto &[name, change] : changes) {
            QTRY_COMPARE(onScreen(*timeline), picture(*timeline));
            QCoreApplication::processEvents(); // no paint is on its way any more
            const QImage before = onScreen(*timeline);
            change();
            QTRY_VERIFY2(onScreen(*timeline) != before, name);
            QTRY_COMPARE(onScreen(*timeline), picture(*timeline));
        }
    }

    void theEmptyStripOfAnotherDayTellsWhy()
    {
        const auto hasTip = [this] {
            QHelpEvent ask(QEvent::ToolTip, QPoint(300, 30), QPoint(300, 30));
            return QCoreApplication::sendEvent(timeline.data(), &ask) && ask.isAccepted();
        };
        const API::CameraPtr camera = putCamera(*timeline, world, 1, recordsOf("10:00 to 11:00"));
        timeline->showText("busy"_s);
        QVERIFY2(!hasTip(), "there are bars");
        QSignalSpy received(camera.data(), &API::Camera::recordsChanged);
        timeline->changeDate(stripDay.addDays(1));
        QVERIFY(received.wait() && hasTip());
        QCOMPARE(QToolTip::text(), "No records"_s);
        timeline->setCurrentValue(at("+1 12:00"));
        QVERIFY2(!hasTip(), "it is painted");
        timeline->setCurrentValue(at("12:00"));
        timeline->hideText();
        QVERIFY(!hasTip());
    }

    void activeCameraAndExport()
    {
        const API::CameraPtr empty = putCamera(*timeline, world, 1, {});
        world.setRecords(2, recordsOf("14:00 to 15:00"));
        const API::CameraPtr cloud = putCamera(*timeline, world.cloudCamera(2));
        const API::CameraPtr camera =
            putCamera(*timeline, world, 3, recordsOf("10:00 to 11:00, 14:00 to 15:00"));
        QVERIFY(empty && cloud && camera);
        timeline->setCurrentValue(at("14:02:30"));
        QSignalSpy enabled(timeline.data(), &Timeline::exportEnabled);
        for (const API::CameraPtr &each : {empty, cloud, camera}) {
            const int before = enabled.size();
            timeline->setActiveCameraId(each->globalId());
            QCOMPARE(timeline->activeCamera(), each);
            QCOMPARE(timeline->enterSelectionMode(true, false), each == camera);
            QTRY_VERIFY(enabled.size() > before);
            QCOMPARE(enabled.last(), QVariantList{each == camera});
        }
        QCOMPARE(selectionOf(*timeline), "14:00 to 14:05"_s);
        QTRY_COMPARE(windowOf(*timeline), "13:47:30 to 14:17:30"_s);
        timeline->setCurrentValue(at("10:30"));
        for (const bool keepsIt : {true, false}) {
            QVERIFY(timeline->enterSelectionMode(keepsIt, keepsIt));
            QCOMPARE(selectionOf(*timeline), "14:00 to 14:05"_s);
        }
        // A fragment of another day doesn't stay.
        timeline->changeDate(stripDay.addDays(1));
        QVERIFY(timeline->enterSelectionMode(true, true));
        QCOMPARE(timeline->selectionStart(), at("+1 0:00"));
        // That day has nothing to choose from. The day of records is that of the cursor.
        QVERIFY(!timeline->enterSelectionMode(false, false));
        QTRY_COMPARE(timeline->endValue(), at("+1 0:17:30"));
        timeline->setCurrentValue(at("+1 12:00"));
        QVERIFY(!timeline->canExport());
        // One that isn't there yet doesn't become the active one when it comes.
        const API::CameraPtr later = world.localCamera(4);
        timeline->setActiveCameraId(later->globalId());
        QVERIFY(!timeline->activeCamera());
        timeline->addCamera(later);
        QVERIFY(!timeline->activeCamera());
    }

private:
    /// Marks 12:00 to 12:05 in a window where a pixel is a second: x 415 to 715.
    bool selectFragment()
    {
        const API::CameraPtr camera = putCamera(*timeline, world, 1, recordsOf("10:00 to 14:00"));
        if (!camera)
            return false;
        timeline->setActiveCameraId(camera->globalId());
        timeline->setCurrentValue(at("12:02:30"));
        // Tighter than what the fragment would be shown in, and with the fragment inside.
        setWindow(*timeline, "11:53:20 to 12:10");
        return timeline->enterSelectionMode(true, false) &&
               selectionOf(*timeline) == "12:00 to 12:05";
    }

    /// With their records received and painted.
    bool showsCamerasIn(const QString &window)
    {
        QSignalSpy updated(timeline.data(), &Timeline::recordsUpdated);
        putCamerasOn(*timeline);
        const bool received = QTest::qWaitFor([&] { return updated.size() == 2; }, 30000);
        setWindow(*timeline, window);
        timeline->setActiveCameraId(timeline->activeCamera()->globalId());
        const auto isPainted = [this] { return onScreen(*timeline) == picture(*timeline); };
        return received && QTest::qWaitFor(isPainted);
    }

    /// Two cameras, so that in any window some record begins or ends.
    void putCamerasOn(Timeline &strip)
    {
        const auto far = world.loadedCamera(1, stripDay, evenRecords(stripDay, 17, 5000, 2500));
        const auto near = world.loadedCamera(2, stripDay, evenRecords(stripDay, 860, 100, 50));
        strip.addCamera(far);
        strip.addCamera(near);
        strip.setActiveCameraId(far->globalId());
    }

    /// What a strip shows that has seen no other window than this one.
    QImage drawnAnew(const QString &window, const QString &mouse)
    {
        Timeline strip(stripDay);
        strip.resize(stripWidth, strip.height());
        putCamerasOn(strip);
        setWindow(strip, window);
        use(strip, mouse);
        return picture(strip);
    }

    StripWorld world;
    QScopedPointer<Timeline> timeline;
};

QTEST_MAIN(TimelineTest)
#include "TimelineTest.moc"
