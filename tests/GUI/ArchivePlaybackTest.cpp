// SPDX-License-Identifier: MIT
// The archive of all tiles of a window: what starts when, how the tiles are kept in step, and
// the export of a fragment.
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

using namespace ZorvaneClient::GUI;
using GUI::Player::VideoWidget;

namespace {

const QDate day(2026, 3, 5);
constexpr int startDeadlineMs = 20000;

QDateTime moment(const QString &text)
{
    return QDateTime(day, QTime::fromString(text, "h:mm:ss"_s));
}

/// What a player was started for: camera, moment and speed as in "1 10:05:00 4x", or "1 live".
QString wordsOf(const QStringList &arguments)
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

QColor borderOf(QWidget *field)
{
    return field->grab().toImage().pixelColor(0, field->height() / 2);
}

} // namespace

class ArchivePlaybackTest : public QObject
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

    void aClickPlaysTheRecordsThatHoldIt()
    {
        open({camera(1, {"10:00:00-11:00:00"}), camera(2, {"10:30:00-11:30:00"}),
              world.cloudCamera(3, false)});
        press("showRecordsButton");
        window->onPlayArchive(moment("10:45:10"));

        expectStarts({"1 10:45:10 1x", "2 10:45:10 1x"});
        QVERIFY(showsText(*tile(2), MainWindow::tr("Archive is not shared")));
        QVERIFY(timeline()->sliderVisible());
        QCOMPARE(textOf("timeLabel"), "10:45:10"_s);
        QCOMPARE(textOf("dateLabel"), "05/03"_s);
        QCOMPARE(pageOf("controlMode"), "datePage"_s);
    }

    void clicksOutsideRecordsJump_data()
    {
        rows<QString, QString>({"click", "expected"},
                               {{"before all", "09:00:00", "10:00:00"},
                                {"in a gap", "10:15:00", "10:20:00"},
                                {"on a record's end", "10:10:00", "10:20:00"},
                                {"on a record's start", "10:20:00", "10:20:00"},
                                {"past the last", "10:30:01", "none"}});
    }

    void clicksOutsideRecordsJump()
    {
        const auto [click, expected] = row<QString, QString>();
        open({camera(1, {"10:00:00-10:10:00", "10:20:00-10:30:00"})});
        window->onPlayArchive(moment(click));
        window->playArchive();
        const bool plays = expected != "none";
        QCOMPARE(timeline()->currentValue(), moment(plays ? expected : click));
        expectStarts(plays ? QStringList("1 " + expected + " 1x") : QStringList());
        QCOMPARE(showsText(*tile(0), VideoWidget::tr("No records")), !plays);
    }

    void aTypedMomentPlaysAsAClickDoes_data()
    {
        // Now is 23:00:00.
        rows<QString, QString>({"typed", "started"},
                               {{"date and time", "05/03/2026 10:45:10", "10:45:10"},
                                {"a time of the day", "10:45", "10:45:00"},
                                {"another day", " 4/3/2026  10:45:10 ", "2026-03-04 10:45:10"},
                                {"now", "23:00:00", "23:00:00"},
                                {"the future", "23:00:01", ""},
                                {"a day that isn't", "30/02/2026 10:45:10", ""},
                                {"no time", "05/03/2026", ""},
                                {"nothing", "", ""}});
    }

    void aTypedMomentPlaysAsAClickDoes()
    {
        const auto [typed, started] = row<QString, QString>();
        const QDateTime start = moment("10:00:00");
        open({world.loadedCamera(1, day, {{start.addDays(-1), start}, {start, start.addDays(1)}})});
        window->show();
        auto *time = window->findChild<QLabel *>("timeLabel"_s);
        QTest::mouseClick(time, Qt::LeftButton);
        QVERIFY2(!QApplication::activePopupWidget(), "live");
        press("showRecordsButton");
        timeline()->zoom(100);
        QTest::mouseClick(time, Qt::RightButton);
        QVERIFY(!QApplication::activePopupWidget());
        QTest::mouseClick(time, Qt::LeftButton);
        const QPointer<QWidget> field = QApplication::activePopupWidget();
        QVERIFY(field && qAbs(field->x() - time->mapToGlobal(QPoint()).x()) <= 2); // a frame
        auto *edit = field->findChild<QLineEdit *>();
        QCOMPARE(field->size(), edit->size());
        QCOMPARE(edit->selectedText(), "05/03/2026 23:00:00"_s);
        const QColor usual = borderOf(edit);
        edit->setText(typed);
        QTest::keyClick(edit, Qt::Key_Return);

        if (started.isEmpty()) {
            QVERIFY(field->isVisible());
            QVERIFY(borderOf(edit).red() > 200 && usual.red() < 200);
            QTest::keyClick(edit, Qt::Key_5);
            QCOMPARE(borderOf(edit), usual);
            QTest::keyClick(edit, Qt::Key_Escape);
            QTRY_VERIFY(!field);
            expectStarts({});
            return;
        }
        QTRY_VERIFY(!field);
        expectStarts({"1 " + started + " 1x"});
        const QDateTime played = timeline()->currentValue();
        QCOMPARE(textOf("timeLabel"), started.right(8));
        QVERIFY(timeline()->startValue() <= played && played <= timeline()->endValue());
    }

    void aSpanStartsWhenTheCursorReachesIt()
    {
        open({camera(1, {"10:00:00-12:00:00"}), camera(2, {"11:00:00-12:00:00"})});
        window->onPlayArchive(moment("10:59:00"));
        expectStarts({"1 10:59:00 1x"});
        QVERIFY(!tile(1)->isPlaying());

        tile(0)->setTime(moment("11:00:00"));
        window->updateTimeline(0);
        // The window's own tick finds it.
        expectStarts({"2 11:00:00 1x"});
    }

    void aTileThatRanOutComesBackWithItsNextRecord()
    {
        open({camera(1, {"10:00:00-10:10:00", "10:30:00-10:40:00"}),
              camera(2, {"10:00:00-10:20:00"})});
        window->onPlayArchive(moment("10:05:00"));
        expectStarts({"1 10:05:00 1x", "2 10:05:00 1x"});
        tile(0)->stop();
        tile(1)->setTime(moment("10:12:00"));
        window->updateTimeline(0);
        window->playArchive();
        QVERIFY2(!tile(0)->isPlaying(), "the other camera still plays");

        tile(1)->stop();
        window->playArchive();
        QCOMPARE(timeline()->currentValue(), moment("10:30:00"));
        expectStarts({"1 10:30:00 1x"});
    }

    void tilesAheadAreHeldAndReleased()
    {
        playTwo();
        // The tiles that are held when they are that far ahead of the cursor.
        const auto held = [this](int firstMs, int secondMs) {
            tile(0)->setTime(moment("10:05:00").addMSecs(firstMs));
            tile(1)->setTime(moment("10:05:00").addMSecs(secondMs));
            window->playArchive();
            return QString(tile(0)->isPaused() ? "first" : "") +
                   QString(tile(1)->isPaused() ? "second" : "");
        };
        QCOMPARE(held(0, 3000), QString());
        QCOMPARE(held(0, 3001), "second"_s);
        QCOMPARE(held(0, 1500), "second"_s);
        QCOMPARE(held(0, 1499), QString());
        QCOMPARE(held(0, 2999), QString());
        QTRY_VERIFY(child->commands().contains("pause"_s));
        // Where all are ahead, nobody is left to move the cursor.
        QCOMPARE(held(5000, 60000), QString());
    }

    void cursorFollowsTheSlowestTileIntoTheNextDay()
    {
        playTwo();
        tile(0)->setTime(moment("10:06:02"));
        tile(1)->setTime(moment("10:06:00"));
        emit tile(0)->msecsAdded(1000);
        QCOMPARE(timeline()->currentValue(), moment("10:05:00"));
        emit tile(1)->msecsAdded(1000);
        QCOMPARE(timeline()->currentValue(), moment("10:06:00"));
        QCOMPARE(textOf("timeLabel"), "10:06:00"_s);

        clock->advance(2 * 60 * 60);
        const QDateTime next(day.addDays(1), QTime(0, 0, 5));
        grid()->setTime(next);
        window->updateTimeline(0);
        QCOMPARE(timeline()->startValue().date(), next.date());
        QCOMPARE(timeline()->currentValue(), next);
        QTRY_VERIFY(world.requestedDays(1).contains(next.date()));
    }

    void pauseFreezesTheTick()
    {
        open({camera(1, {"10:00:00-11:00:00"})});
        window->onPlayArchive(moment("10:05:00"));
        expectStarts({"1 10:05:00 1x"});
        press("pauseButton");
        QCOMPARE(pageOf("playPauseStack"), "playPage"_s);
        tile(0)->stop();
        window->playArchive();
        QVERIFY(!tile(0)->isPlaying());

        press("playButton");
        QCOMPARE(pageOf("playPauseStack"), "pausePage"_s);
        QCOMPARE(stateOf(*tile(0)), "Playing"_s);
        tile(0)->stop();
        window->playArchive();
        expectStarts({"1 10:05:00 1x"});
    }

    void aCameraAddedWhileTheArchivePlaysJoins()
    {
        const API::CameraPtr late = camera(2, {"10:00:00-11:00:00"});
        open({camera(1, {"10:00:00-11:00:00"})}, 1);
        window->onPlayArchive(moment("10:05:00"));
        expectStarts({"1 10:05:00 1x"});
        window->addToLayout(late);
        QVERIFY(timeline()->hasCamera(late->globalId()));
        QVERIFY(dumpOf(*grid()->player(late)).contains("is archive playing? true"));
        window->playArchive();
        // The list of spans made anew may start the first camera again at the cursor.
        QTRY_VERIFY_WITH_TIMEOUT(newStarts().contains("2 10:05:00 1x"), startDeadlineMs);
    }

    void speedRestartsAtTheCursorUntilLiveEndsTheArchive()
    {
        open({camera(1, {"10:00:00-23:30:00"})});
        press("showRecordsButton");
        auto *slider = panel()->findChild<QSlider *>("speedSlider"_s);
        slider->setValue(2);
        QVERIFY2(!timeline()->sliderVisible(), "live play has no speed");
        window->onPlayArchive(moment("10:05:00"));
        expectStarts({"1 10:05:00 4x"});
        tile(0)->setTime(moment("10:07:00"));
        window->updateTimeline(0);
        slider->setValue(5);
        expectStarts({"1 10:07:00 32x"});

        press("goLiveButton");
        expectStarts({"1 live"});
        QVERIFY(!timeline()->sliderVisible());
        QVERIFY(timeline()->isHidden());
        QCOMPARE(pageOf("controlMode"), "livePage"_s);
        QCOMPARE(panel()->speed(), 1);
        QCOMPARE(timeline()->currentValue(), clock->now());
        // There is a record of this moment that an archive would go on with.
        tile(0)->stop();
        QTimerEvent leftover(0);
        QCoreApplication::sendEvent(window.data(), &leftover);
        QVERIFY2(!tile(0)->isPlaying(), "timers of the archive do nothing live");
    }

    void keysMoveThroughTheArchive_data()
    {
        rows<QString, QString, QString>({"from", "keys", "start"},
                                        {{"back", "10:05:00", "Left", "1 10:04:50 1x"},
                                         {"far on", "10:05:00", "Shift+Right", "1 10:06:00 1x"},
                                         {"not past now", "22:59:55", "Right", "1 23:00:00 1x"},
                                         {"day before", "00:00:05", "Left", ""},
                                         {"faster", "10:05:00", "=", "1 10:05:00 2x"}});
    }

    void keysMoveThroughTheArchive()
    {
        const auto [from, keys, start] = row<QString, QString, QString>();
        open({camera(1, {"00:00:00-23:30:00"})});
        window->onPlayArchive(moment(from));
        expectStarts({"1 " + QTime::fromString(from, "h:mm:ss").toString() + " 1x"});
        QTest::keySequence(window.data(), QKeySequence(keys));
        if (!start.isEmpty())
            expectStarts({start});
        QCOMPARE(panel()->findChild<QLabel *>("speedLabel"_s)->isHidden(), keys != "=");
        const QDateTime reached = timeline()->currentValue();
        QCOMPARE(timeline()->startValue().date(), reached.date());
        QCOMPARE(reached < moment("00:00:00"), from == "00:00:05");
    }

    void exports_data()
    {
        // Steps are buttons and words of the player; ">2" makes a camera active, "+2" adds a tile
        // of it, "-2" closes the second oldest tile of the grid; "size" resizes it, "again" opens
        // it as it is and "new" an empty one. "dead" is a player that ends without a word.
        const QString over = "controlPage exportButtonPage "_s;
        const QString empty = "emptyPage exportButtonPage "_s;
        const QString marking = "exportPage exportButtonPage selectFragmentPage"_s;
        const QString running = "exportPage exportLabelPage exportingPage"_s;
        const QString saved = "Record saved. <a style=\"color: white\" href=\"%1\">Open folder</a>";
        rows<QString, QString, QString>(
            {"steps", "shown", "hint"},
            {{"done", "exportMode export done", over, saved},
             {"error", "exportMode export error", over, "Error while exporting."},
             {"closed", "exportMode export -1", over, ""},
             {"all closed", "exportMode export -1 -1", empty, ""},
             {"another layout", "exportMode export new", empty, ""},
             {"only marked, another layout", "exportMode new", empty, ""},
             {"only marked, its camera closed", "exportMode >2 -1 size", marking, ""},
             {"beside an edited grid", "exportMode export >2 +1 -2", running, ""},
             {"older tile of the camera closed", "+1 exportMode export -1", running, ""},
             {"newer tile of the camera closed", "+1 exportMode export -1 -2", over, ""},
             {"pressed twice", "exportMode export >2 export", running, ""},
             {"the same layout", "exportMode export again", running, ""},
             {"dead, the same layout", "exportMode export dead again", over, ""}});
    }

    /// What the panels show of an export, which Cancel ends in any case.
    void exports()
    {
        const auto [steps, expected, hint] = row<QString, QString, QString>();
        const QString last = steps.section(' ', -1);
        playTwo(1);
        press("showRecordsButton");
        timeline()->grab(); // What it paints decides whether there is something to export.
        child->setScript({"print export-start\\nexport-percent 7\\n", "wait last word",
                          "print export-" + last + "\\n", "exit 0"});
        qint64 process = 0;
        for (const QString &step : steps.split(' ')) {
            const int number = step.mid(1).toInt() - 1;
            if (step == "export" && process == 0) {
                press("exportButton");
                QVERIFY2(!tile(0)->isExporting(), "it may not");
                shown.at(0)->setExportEnabled(true);
                shown.at(1)->setExportEnabled(true);
                press("exportButton");
                QTRY_COMPARE_WITH_TIMEOUT(textOf("exportPercent"), "7%"_s, startDeadlineMs);
                process = child->lastProcessId();
                continue;
            }
            if (step == last && (last == "done" || last == "error"))
                child->tell("last word");
            else if (step == "dead")
                QTRY_VERIFY((child->tell("last word"), !tile(0)->isExporting()));
            else if (step == "size")
                grid()->resizeLayout(2, 2);
            else if (step == "again")
                window->openLayout(API::LayoutPtr::create(*grid()->workingLayout()));
            else if (step == "new")
                window->openLayout(API::LayoutPtr::create());
            else if (step.startsWith('>'))
                window->activateCamera(shown.at(number));
            else if (step.startsWith('+'))
                window->addToLayout(shown.at(number));
            else if (auto *closed = grid()->findChildren<VideoWidget *>().value(number))
                emit closed->closed(closed);
            else
                press(step + "Button");
        }
        const auto pages = [this] {
            return panel()->currentWidget()->objectName() + ' ' + pageOf("exportControl") + ' ' +
                   pageOf("messageWidget");
        };
        const QString folder = QFileInfo(child->starts().last().last()).path();
        const QString end =
            last == "error" ? hint + " in red"_s : QString(hint).replace("%1", folder);
        QTRY_COMPARE(pages(), expected);
        QTRY_COMPARE(hinted(), end); // before it goes by itself
        if (expected.startsWith("exportPage")) {
            QCOMPARE(ScriptedChild::isAlive(process), process != 0);
            if (process != 0) { // layouts in turn wait for it, live too
                const auto other = API::LayoutPtr::create();
                API::CloudAPIClient().addLayout(other);
                window->findChild<LayoutListWidget *>()->updateLayouts();
                window->playLive();
                QTest::keyClick(window.data(), Qt::Key_T);
                QTRY_COMPARE(hinted(), "Saved layouts in turn, every 30 s."_s);
                clock->advance(31);
                expireTimer(*window, std::chrono::seconds(1));
                QVERIFY(window->playerCount() > 0);
                API::CloudAPIClient().deleteLayout(other);
            }
            press("cancelButton");
            QCOMPARE(pages(), "controlPage exportButtonPage "_s);
        } else {
            const QList<API::LayoutCell> cells = grid()->workingLayout()->cellList();
            QCOMPARE(timeline()->cameraCount(), int(cells.size()));
            QCOMPARE(timeline()->activeCamera(), cells.value(0).camera);
        }
        QTRY_VERIFY(!ScriptedChild::isAlive(process));
        QVERIFY(hinted() == end || hinted().isEmpty());
    }

private:
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

QTEST_MAIN(ArchivePlaybackTest)
#include "ArchivePlaybackTest.moc"
