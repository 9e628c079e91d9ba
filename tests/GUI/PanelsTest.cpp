// SPDX-License-Identifier: MIT
// The panels round the grid, in a window of the program with another one beside it.
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "App/Application.h"
#include "App/Settings.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/CalendarPopup.h"
#include "GUI/ControlPanel.h"
#include "GUI/GridSizeEditor.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Timeline.h"
#include "tests/GUI/ArchiveWorld.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScriptedChild.h"

using namespace ZorvaneClient::GUI;

namespace {

const QDate today(2026, 8, 31);

/// Mode and look of the panel in words.
QString shownBy(const InfoPanel &panel)
{
    const auto *edit = panel.findChild<QLineEdit *>("layoutNameEdit"_s);
    const auto *buttons = panel.findChild<QStackedWidget *>("buttonsStack"_s);
    QStringList words{QString::number(panel.mode()), buttons->currentWidget()->objectName()};
    if (!edit->isHidden())
        words << (edit->isReadOnly() ? "name" : "editable name");
    if (!panel.findChild<QPushButton *>("gridSizeButton"_s)->isHidden())
        words << "grid";
    const auto actions = panel.findChild<QPushButton *>("settingsButton"_s)->menu()->actions();
    for (const QAction *action : actions)
        words << action->text();
    return words.join(", ");
}

/// How many pixels are bright.
int lit(const QImage &picture)
{
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            count += picture.pixelColor(x, y).red() > 130 ? 1 : 0;
    }
    return count;
}

App::Application *application()
{
    return qobject_cast<App::Application *>(qApp);
}

} // namespace

class PanelsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(world.start());
        // Without it the program would end with the window of the first test.
        application()->setupMainWindow(other = new MainWindow);
        other->hide();
    }

    void init()
    {
        world.reset();
        world.setRecords(1, evenRecords(QDate(2026, 8, 3), 3, 3600, 60));
        world.setRecords(2, evenRecords(QDate(2026, 8, 4), 5, 3600, 60));
        world.setRecords(3, evenRecords(QDate(2026, 8, 3), 5, 3600, 60));
        clock.reset(new FakeClock(QDateTime(today, QTime(12, 0))));
        child.reset(new ScriptedChild({"wait never"}));
        application()->setSoundVolume(50);
        application()->enableSound(true);
        application()->setupMainWindow(window = new MainWindow);
        open(world.localCamera(9));
        QVERIFY(QTest::qWaitForWindowExposed(window));
    }

    void cleanup()
    {
        while (QWidget *popup = QApplication::activePopupWidget())
            popup->close();
        window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        child.reset();
        clock.reset();
    }

    void modesOfTheInfoPanel()
    {
        auto *panel = find<InfoPanel>();
        const QString menu = ", Edit view, Open new window, Close view";
        QCOMPARE(shownBy(*panel), "2, settingsPage, name" + menu);
        panel->enterUnsavedMode();
        QCOMPARE(shownBy(*panel), "3, controlsPage, name" + menu);
        find<QAction>("actionEdit_view")->trigger();
        QCOMPARE(shownBy(*panel), "4, controlsPage, editable name, grid" + menu);
        panel->enterUnsavedMode();
        QCOMPARE(panel->mode(), 4);
        press("cancelLayoutButton");
        QCOMPARE(shownBy(*panel), "2, settingsPage, name" + menu);
        panel->enterEditMode();
        press("saveLayoutButton");
        QCOMPARE(panel->mode(), 2);
        panel->enterEditMode();
        panel->enterEmptyMode();
        QCOMPARE(shownBy(*panel), "1, settingsPage, Open new window"_s);
    }

    void pickedSizeIsTakenOnceThePopupIsClosed()
    {
        auto *panel = find<InfoPanel>();
        panel->enterEditMode();
        press("gridSizeButton");
        auto *editor = find<GridSizeEditor>();
        QVERIFY(editor->isVisible());
        QString picked;
        connect(panel, &InfoPanel::layoutSizeChanged, editor, [&](int rows, int columns) {
            picked +=
                QString("%1x%2 ").arg(rows).arg(columns) + (editor->isVisible() ? "open" : "");
        });
        // The present size counts as a choice too.
        const QPoint cell(10 + 14 * 2 + 3, 10 + 12 * 2 + 3);
        QTest::mouseMove(editor, cell);
        QTest::mousePress(editor, Qt::LeftButton, Qt::NoModifier, cell);
        QCOMPARE(picked, "3x3 "_s);
    }

    void aLongNameShowsItsBeginning()
    {
        auto *panel = find<InfoPanel>();
        auto *edit = find<QLineEdit>("layoutNameEdit");
        panel->setTitle("A name longer than its field "_s.repeated(10));
        QCOMPARE(edit->cursorPosition(), 0);
        panel->enterEditMode();
        edit->setCursorPosition(edit->text().size());
        panel->enterViewMode();
        QCOMPARE(edit->cursorPosition(), 0);

        panel->enterEditMode();
        QVERIFY(QTest::qWaitForWindowActive(window));
        edit->setFocus();
        QTRY_VERIFY(edit->hasFocus());
        QTest::keyClick(edit, Qt::Key_Return);
        QVERIFY(!edit->hasFocus());
        panel->setCurrentLayout(API::LayoutPtr());
        QCOMPARE(panel->layoutName(), QString());
    }

    void theSoundButtonShowsTheVolume()
    {
        const auto at = [this](int volume) {
            find<QSlider>("soundSlider")->setValue(volume);
            return pictureOf("soundButton");
        };
        const QImage silent = at(0);
        const QImage quiet = at(1);
        const QImage loud = at(50);
        QVERIFY(lit(silent) < lit(quiet) && lit(quiet) < lit(loud));
        QCOMPARE(at(49), quiet);
        QCOMPARE(at(100), loud);
        press("soundButton");
        const QImage off = pictureOf("soundButton");
        QVERIFY(off != silent && off != quiet && off != loud);
        press("soundButton");
        QCOMPARE(pictureOf("soundButton"), loud);
    }

    void soundReachesTheTilesAndAllWindows()
    {
        const auto heard = [this] { return child->commands().join(' ').section("volume ", -1); };
        auto *slider = find<QSlider>("soundSlider");
        QTRY_COMPARE(heard(), "50"_s);
        slider->setValue(30);
        QTRY_COMPARE(heard(), "30"_s);
        press("soundButton");
        QTRY_COMPARE(heard(), "0"_s);
        for (const auto *panel : {other->findChild<ControlPanel *>(), new ControlPanel(window)}) {
            QCOMPARE(panel->volume(), 30);
            QVERIFY(!panel->isSoundEnabled());
            for (const char *name : {"soundSlider", "speedSelector", "speedSlider"})
                QVERIFY2(panel->findChild<QWidget *>(name)->isHidden(), name);
        }
        press("soundButton");
        QTRY_COMPARE(heard(), "30"_s);
        QVERIFY(ControlPanel().isSoundEnabled());
    }

    void slidersUnfoldUnderTheMouse()
    {
        auto *sound = find("soundSlider");
        auto *slider = find<QSlider>("speedSlider");
        auto *selector = find("speedSelector");
        QVERIFY(!sound->isVisible() && !selector->isVisible());
        send(QEvent::Enter, "soundControl");
        QVERIFY(sound->isVisible());
        send(QEvent::Leave, "soundControl");
        QVERIFY(!sound->isVisible());

        press("showRecordsButton");
        QVERIFY(strip()->isVisible() && selector->isVisible() && !slider->isVisible());
        const QImage plain = pictureOf("speedButton");
        QVERIFY(lit(plain) != 0);
        send(QEvent::HoverEnter, "speedSelector");
        QVERIFY(slider->isVisible());
        slider->setValue(3);
        const QImage fast = pictureOf("speedButton");
        QVERIFY(fast != plain);
        send(QEvent::HoverLeave, "speedSelector");
        QVERIFY(!slider->isVisible());
        // A speed above 1x stays readable.
        QVERIFY(find("speedLabel")->isVisible());
        QCOMPARE(find<QLabel>("speedLabel")->text(), "8x"_s);
        press("speedButton");
        QCOMPARE(slider->value(), 0);
        QCOMPARE(pictureOf("speedButton"), plain);
        slider->setValue(5);
        press("goLiveButton");
        QCOMPARE(slider->value(), 0);
        QVERIFY(!find("speedLabel")->isVisible());

        press("showRecordsButton");
        press("hideRecordsButton");
        QVERIFY(!strip()->isVisible() && !selector->isVisible());
    }

    void qualityMenu()
    {
        QVector<QRadioButton *> items;
        QString texts;
        QString qualities;
        const auto actions = find<QPushButton>("qualityButton")->menu()->actions();
        for (QAction *action : actions) {
            auto *item = qobject_cast<QWidgetAction *>(action)->defaultWidget();
            items.append(qobject_cast<QRadioButton *>(item));
            texts += items.last()->text() + ' ';
        }
        QCOMPARE(texts, "Low Middle High Auto "_s);
        QVERIFY(items.last()->isChecked());
        for (QRadioButton *item : qAsConst(items)) {
            item->click();
            qualities += dumpOf(*find<Player::VideoWidget>()).section(" quality: ", 1).left(1);
        }
        QCOMPARE(qualities, "0121"_s);
        items.first()->click();
        open(world.localCamera(9));
        QVERIFY(items.last()->isChecked() && !items.first()->isChecked());
    }

    void dayButtonsMoveTheStrip()
    {
        auto *previous = find<QPushButton>("prevDayButton");
        QCOMPARE(find<QDateEdit>("dateEdit")->date(), today);
        previous->click();
        QCOMPARE(strip()->startValue().date(), QDate(2026, 8, 30));
        // They tell where they lead.
        const QString name = QLocale().toString(QDate(2026, 8, 29), "MMM dd"_s);
        QVERIFY(previous->toolTip().contains(name));
        QCOMPARE(previous->accessibleName(), name);
        press("nextDayButton");
        press("nextDayButton");
        QCOMPARE(strip()->startValue().date(), QDate(2026, 9, 1)); // tomorrow
    }

    void zoomMovesStripAndSlider()
    {
        const auto seconds = [this] { return strip()->startValue().secsTo(strip()->endValue()); };
        auto *slider = find<QSlider>("zoomSlider");
        const qint64 whole = seconds();
        press("zoomInButton");
        const qint64 closer = seconds();
        QVERIFY(closer < whole);
        QVERIFY(slider->value() > 0);
        press("zoomOutButton");
        QCOMPARE(seconds(), whole);
        QCOMPARE(slider->value(), 0);
        slider->setValue(slider->maximum());
        QVERIFY(seconds() < closer);
        strip()->zoom(0);
        QCOMPARE(slider->value(), 0);
    }

    void aClickOnTheDateOpensTheCalendar()
    {
        window->showArchivePanels();
        auto *text = find<QLineEdit>("qt_spinbox_lineedit");
        const QPoint place = text->rect().center();
        for (const QEvent::Type type : {QEvent::MouseButtonDblClick, QEvent::MouseMove}) {
            QMouseEvent event(type, place, text->mapToGlobal(place), Qt::LeftButton, Qt::LeftButton,
                              Qt::NoModifier);
            QCoreApplication::sendEvent(text, &event);
            QCoreApplication::processEvents();
            QVERIFY(!text->hasSelectedText() && !QApplication::activePopupWidget());
        }
        for (const int x : {text->width() - 2, 1}) {
            openCalendar(QPoint(x, place.y()));
            const QPoint fifth = cells()[5].center();
            QWidget *days = calendar()->window()->childAt(fifth);
            QTest::mouseClick(days, Qt::LeftButton, Qt::NoModifier,
                              days->mapFrom(calendar()->window(), fifth));
            QTRY_VERIFY(!QApplication::activePopupWidget());
            QCOMPARE(strip()->startValue().date(), QDate(2026, 8, 5));
        }
    }

    void daysWithRecordsAreWhite_data()
    {
        // In the calendar: "+1" takes a camera and waits for its days, "~1" doesn't wait, "-1" and
        // "-" clear. In the window: "o1" opens, "x1" closes, and "!1" has lost the archive's right.
        rows<QString, QString>({"steps", "white"},
                               {{"nobody", "", ""},
                                {"two", "+1 +2", "3 4"},
                                {"one goes", "+1 +2 -1", "4"},
                                {"all go", "+1 +2 -", ""},
                                {"one goes before its days come", "~1 -1 +2", "4"},
                                {"the newest number decides", "+1 +3 -1", "3"},
                                {"five off the newest three", "+1 +3 -1 +1 -3", ""},
                                {"an equal layout", "o1 o1", "3"},
                                {"a closed tile", "o1 x1", ""},
                                {"an empty layout", "o1 o", ""},
                                {"a camera that shows its archive no more", "o1 !1 o1", ""}});
    }

    void daysWithRecordsAreWhite()
    {
        const auto [steps, white] = row<QString, QString>();
        auto *panel = find<ArchiveControlPanel>();
        API::Server server(QVariantMap{{"id"_s, "cloud"_s}});
        QMap<int, API::CameraPtr> cameras{
            {1, world.cloudCamera(1)}, {2, world.cloudCamera(2)}, {3, world.cloudCamera(3)}};
        openCalendar();
        const QStringList all = steps.split(' ');
        for (const QString &step : all) {
            const int id = step.mid(1).toInt();
            const API::CameraPtr camera = cameras.value(id);
            const char kind = step.isEmpty() ? '+' : step.at(0).toLatin1();
            if (kind == '+' || kind == '~')
                panel->addCamera(camera);
            else if (step == "-")
                panel->clear();
            else if (kind == '-')
                panel->clear(camera);
            else if (kind == 'o')
                open(camera);
            else if (kind == 'x')
                find<LayoutWidget>()->removeCamera(camera);
            else
                camera->update(&server, QVariantMap{{"id"_s, id}});
            if (camera && camera->isArchiveShared() && (kind == '+' || kind == 'o')) {
                QVERIFY(QSignalSpy(camera.data(), &API::Camera::calendarChanged).wait());
                QVERIFY(world.requestedDays(id).contains(QDate(2026, 2, 28))); // there is no 31st
            }
        }
        openCalendar();
        // Painted anew, and soon on the screen as well.
        QWidget *popup = calendar()->window();
        QCOMPARE(whiteDays(popup->grab()), white);
        QTRY_COMPARE(whiteDays(popup->screen()->grabWindow(popup->winId())), white);
    }

    void selectedDay()
    {
        const LogCapture log;
        openCalendar();
        QCOMPARE(calendar()->selectedDate(), today);
        calendar()->setSelectedDate(QDate(2026, 8, 5));
        const QImage picture = calendar()->window()->grab().toImage();
        const auto isBlue = [&](int day, int x, int y) {
            const QColor colour = picture.pixelColor(cells()[day].topLeft() + QPoint(x, y));
            return colour.blue() > 200 && colour.red() < 80;
        };
        // A disc of 28 pixels round (19, 16), the middle in whole numbers.
        QVERIFY(isBlue(5, 19, 4) && isBlue(5, 19, 28) && isBlue(5, 7, 16) && isBlue(5, 31, 16));
        QVERIFY(!isBlue(5, 7, 4) && !isBlue(5, 31, 28) && !isBlue(5, 36, 16) && !isBlue(5, 2, 16));
        QVERIFY(!isBlue(6, 7, 16) && !isBlue(6, 19, 4) && !isBlue(6, 31, 16));

        // All days have room, and only those of the month are there.
        const QMap<int, QRect> all = cells();
        const QImage empty = picture.copy(all.first().adjusted(2, 2, -2, -2));
        for (auto cell = all.cbegin(); cell != all.cend(); ++cell) {
            QCOMPARE(cell->size(), QSize(40, 34));
            QVERIFY(picture.rect().contains(*cell));
            QCOMPARE(picture.copy(cell->adjusted(2, 2, -2, -2)) != empty, cell.key() > 0);
        }
        // Nine tenths of the ground hide what is behind.
        QVERIFY(qAbs(qAlpha(picture.pixel(2, 300)) - 230) <= 2);
        QCOMPARE(log.linesOf("QPainter"), QStringList());
    }

private:
    template <typename Widget = QWidget>
    Widget *find(const char *name = nullptr) const
    {
        return window->findChild<Widget *>(QString(name));
    }

    void press(const char *name) { find<QPushButton>(name)->click(); }
    QImage pictureOf(const char *name) const { return find(name)->grab().toImage(); }
    Timeline *strip() const { return find<Timeline>(); }
    CalendarPopup *calendar() const { return find<CalendarPopup>(); }

    void send(QEvent::Type type, const char *name)
    {
        QEvent event(type);
        QCoreApplication::sendEvent(find(name), &event);
    }

    /// A grid of nine cells, with this camera in the first one.
    void open(const API::CameraPtr &camera)
    {
        const auto layout = API::LayoutPtr::create();
        layout->resize(3, 3);
        layout->setCamera(camera, 0, 0, 1, 1);
        QVERIFY(window->openLayout(layout));
    }

    void openCalendar(const QPoint &place = QPoint(1, 1))
    {
        window->showArchivePanels();
        if (!calendar()->isVisible())
            QTest::mousePress(find("qt_spinbox_lineedit"), Qt::LeftButton, Qt::NoModifier, place);
        QTRY_VERIFY(calendar()->isVisible());
        QVERIFY(QTest::qWaitForWindowExposed(calendar()->window()));
    }

    /// Where the days lie in the calendar's window; those of other months have numbers below 1.
    QMap<int, QRect> cells() const
    {
        const auto *view = find<QTableView>("qt_calendar_calendarview");
        const QPoint origin = view->viewport()->mapTo(calendar()->window(), QPoint());
        QMap<int, QRect> result;
        bool isInMonth = false;
        for (int number = 7; number < 7 * 7; ++number) { // below the names of the days
            const QModelIndex index = view->model()->index(number / 7, number % 7);
            const int day = index.data().toInt();
            isInMonth = isInMonth != (day == 1);
            result.insert(isInMonth ? day : -number, view->visualRect(index).translated(origin));
        }
        return result;
    }

    /// The days that are white in a picture of the calendar, as in "3 4".
    QString whiteDays(const QPixmap &picture) const
    {
        QStringList days;
        const QMap<int, QRect> all = cells();
        for (auto cell = all.cbegin(); cell != all.cend(); ++cell) {
            if (lit(picture.copy(*cell).toImage()) != 0)
                days.append(QString::number(cell.key()));
        }
        return days.join(' ');
    }

    ArchiveWorld world;
    QScopedPointer<FakeClock> clock;
    QScopedPointer<ScriptedChild> child;
    MainWindow *other = nullptr;
    QPointer<MainWindow> window;
};

int main(int argc, char **argv)
{
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    PanelsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "PanelsTest.moc"
