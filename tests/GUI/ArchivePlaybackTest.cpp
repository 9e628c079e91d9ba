// SPDX-License-Identifier: MIT
// The archive of all tiles of a window: what starts when, and how the tiles are kept in step.
#include "GUI/Access/AccessFactory.h"
#include "tests/GUI/ArchiveWindow.h"

namespace {

QColor borderOf(QWidget *field)
{
    return field->grab().toImage().pixelColor(0, field->height() / 2);
}

} // namespace

class ArchivePlaybackTest : public ArchiveWindow
{
    Q_OBJECT

private slots:
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

    void screenReadersGoThroughTheRecords()
    {
        using A = QAccessible;
        installAccess(); // as the program does
        open({camera(1, {"10:00:00-11:00:00"})});
        window->show();
        press("showRecordsButton");
        QAccessibleInterface *strip = A::queryAccessibleInterface(timeline());
        QAccessibleValueInterface *value = strip->valueInterface();
        QCOMPARE(value->minimumValue().toInt(), 0);
        QCOMPARE(value->maximumValue().toInt(), 24 * 60 * 60 - 1);
        value->setCurrentValue((10 * 60 + 5) * 60);
        expectStarts({"1 10:05:00 1x"});
        QCOMPARE(value->currentValue().toInt(), (10 * 60 + 5) * 60);
        timeline()->zoom(50);
        const QString spoken = QLocale().toString(day, QLocale::LongFormat);
        const QString part = "%1 to %2"_s.arg(timeline()->startValue().toString("hh:mm"_s),
                                              timeline()->endValue().toString("hh:mm"_s));
        QCOMPARE(strip->text(A::Description), spoken + ", 10:05:00, shown from "_s + part);

        auto *calendar = window->findChild<QCalendarWidget *>();
        auto *view = calendar->findChild<QTableView *>();
        const auto *days = A::queryAccessibleInterface(view)->tableInterface();
        // Months that begin on the first day of a week, with five and with six weeks.
        for (int month = 1; month <= 12; ++month) {
            calendar->setCurrentPage(2026, month);
            QStringList told;
            QAccessibleInterface *last = nullptr;
            for (int cell = 0; cell < days->rowCount() * days->columnCount(); ++cell) {
                QAccessibleInterface *node = days->cellAt(cell / 7, cell % 7);
                if (!node->state().focusable)
                    continue;
                told.append(node->text(A::Name));
                last = node;
            }
            QStringList all;
            for (QDate date(2026, month, 1); date.month() == month; date = date.addDays(1))
                all.append(QLocale().toString(date, QLocale::LongFormat));
            QCOMPARE(told, all);
            last->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
            QCOMPARE(calendar->selectedDate().month(), month);
            QCOMPARE(calendar->selectedDate().day(), calendar->selectedDate().daysInMonth());
        }
        calendar->setCurrentPage(day.year(), day.month());
        QAccessibleInterface *cell = days->cellAt(2, day.dayOfWeek() - calendar->firstDayOfWeek());
        QCOMPARE(cell->text(A::Name) + ": "_s + cell->text(A::Description),
                 spoken + ": Has records");
    }

    void aTypedMomentPlaysAsAClickDoes_data()
    {
        // Now is 23:00:00.
        rows<QString, QString>({"typed", "started"},
                               {{"date and time", "05/03/2026 10:45:10", "10:45:10"},
                                {"a time of the day", "10:45", "10:45:00"},
                                {"another day", " 4/3/2026  10:45:10 ", "2026-03-04 10:45:10"},
                                {"with dashes", "4-3-2026 10:45:10", "2026-03-04 10:45:10"},
                                {"with dots", "4.3.2026 10:45:10", "2026-03-04 10:45:10"},
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
        QCOMPARE(field->size(), QSize(edit->width(), time->height()));
        const int free = edit->width() - edit->fontMetrics().horizontalAdvance(edit->text());
        QVERIFY(free > 14 && free < 30 && edit->font().pixelSize() == 14);
        QVERIFY(edit->hasFocus() && edit->accessibleName() == "Date and time"_s);
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
        QVERIFY2(tile(0)->isPlaying(), "before the first tick");
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
};

QTEST_MAIN(ArchivePlaybackTest)
#include "ArchivePlaybackTest.moc"
