// SPDX-License-Identifier: MIT
// The panels round the grid, in a window of the program with another one beside it.
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "App/Application.h"
#include "GUI/CalendarPopup.h"
#include "GUI/ControlPanel.h"
#include "GUI/GridSizeEditor.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Timeline.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/ArchiveWorld.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScriptedChild.h"

using namespace ZorvaneClient::GUI;

namespace {

const QDate today(2026, 8, 31);

/// Mode and look of the panel in words.
QString shownBy(const InfoPanel &panel)
{
    const auto *edit = panel.findChild<QLineEdit *>("layoutNameEdit"_s);
    const auto *buttons = panel.findChild<QStackedWidget *>("buttonsStack"_s)->currentWidget();
    const auto *menu = panel.findChild<QPushButton *>("settingsButton"_s)->menu();
    const bool hasGrid = !panel.findChild<QPushButton *>("gridSizeButton"_s)->isHidden();
    QString words = "%1 %2 %3"_s.arg(panel.mode()).arg(buttons->objectName());
    words = words.arg(menu->actions().size()) + (hasGrid ? " grid" : "");
    const bool isFixed = edit->isReadOnly() && edit->focusPolicy() == Qt::NoFocus;
    return words + (edit->isHidden() ? "" : isFixed ? " name" : " editable name");
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

} // namespace

class PanelsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(world.start());
        takePointerAway();
        // Without it the program would end with the window of the first test.
        application->setupMainWindow(other = new MainWindow);
    }

    /// As in the user's country, also where the texts are English.
    void theWeekBegins()
    {
        const QLocale before;
        QLocale::setDefault(QLocale("en_US"_s));
        const CalendarPopup popup;
        QLocale::setDefault(before);
        QCOMPARE(QLocale("en_US"_s).firstDayOfWeek(), Qt::Sunday);
        QCOMPARE(popup.firstDayOfWeek(), QLocale::system().firstDayOfWeek());
    }

    void init()
    {
        world.reset();
        world.setRecords(1, evenRecords(QDate(2026, 8, 3), 3, 3600, 60));
        world.setRecords(2, evenRecords(QDate(2026, 8, 4), 5, 3600, 60));
        world.setRecords(3, evenRecords(QDate(2026, 8, 3), 5, 3600, 60));
        clock.reset(new FakeClock(QDateTime(today, QTime(12, 0))));
        child.reset(new ScriptedChild({"wait never"}));
        application->setupMainWindow(window = new MainWindow);
        open(world.localCamera(9));
    }

    void cleanup()
    {
        window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        child.reset();
        clock.reset();
    }

    void modesOfTheInfoPanel()
    {
        auto *panel = find<InfoPanel>();
        QCOMPARE(shownBy(*panel), "2 settingsPage 3 name"_s);
        panel->enterUnsavedMode();
        QCOMPARE(shownBy(*panel), "3 controlsPage 3 name"_s);
        find<QAction>("actionEdit_view")->trigger();
        panel->enterUnsavedMode();
        QCOMPARE(shownBy(*panel), "4 controlsPage 3 grid editable name"_s);
        press("cancelLayoutButton");
        QCOMPARE(shownBy(*panel), "2 settingsPage 3 name"_s);
        panel->enterEditMode();
        press("saveLayoutButton");
        QCOMPARE(panel->mode(), 2);
        panel->enterEditMode();
        panel->enterEmptyMode();
        QCOMPARE(shownBy(*panel), "1 settingsPage 1"_s);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(panel->findChildren<QMenu *>().size(), 1);
    }

    void pickedSizeIsTakenOnceThePopupIsClosed()
    {
        press("gridSizeButton");
        auto *editor = find<GridSizeEditor>();
        QCOMPARE(editor->cursor().shape(), Qt::PointingHandCursor);
        QTest::mouseMove(editor, QPoint(45, 25));
        QTRY_COMPARE(QToolTip::text(), "3 × 2"_s);
        QTest::mouseMove(editor, QPoint(45, 5)); // above the matrix
        QTRY_VERIFY(!QToolTip::isVisible());
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Down, Qt::Key_Left})
            QTest::keyClick(editor, key);
        QCOMPARE(editor->accessibleName(), "Grid size: 4 × 4"_s);
        QSignalSpy keyed(editor, &GridSizeEditor::sizeSelected);
        QTest::keyClick(editor, Qt::Key_Return);
        QCOMPARE(keyed.value(0), (QVariantList{4, 4}));
        QSignalSpy picked(find<InfoPanel>(), &InfoPanel::layoutSizeChanged);
        connect(find<InfoPanel>(), &InfoPanel::layoutSizeChanged, editor,
                [editor] { QVERIFY(!editor->isVisible()); });
        emit editor->sizeSelected(2, 3);
        QCOMPARE(picked.value(0), (QVariantList{2, 3}));
    }

    void aLongNameShowsItsBeginning()
    {
        auto *panel = find<InfoPanel>();
        auto *edit = find<QLineEdit>("layoutNameEdit");
        // Of a word in capitals only the ellipsis leaves the upper half free.
        const auto endsInDots = [edit] {
            const QImage shown = edit->grab().toImage();
            int end = shown.width() - 1;
            while (end > 0 && lit(shown.copy(end, 0, 1, shown.height())) == 0)
                --end;
            return lit(shown.copy(end - 7, 0, 8, shown.height() / 2)) == 0;
        };
        const auto tip = [edit] {
            QHelpEvent ask(QEvent::ToolTip, QPoint(5, 5), edit->mapToGlobal(QPoint(5, 5)));
            QCoreApplication::sendEvent(edit, &ask);
            return QToolTip::isVisible() ? QToolTip::text() : QString();
        };
        QCOMPARE(tip(), QString());
        const QString name = QString(99, 'W') + "<b>";
        panel->setTitle(name);
        QCOMPARE(edit->cursorPosition(), 0);
        QVERIFY(endsInDots());
        edit->setStyleSheet("background: rgb(200, 0, 0);"_s);
        QCOMPARE(edit->grab().toImage().pixelColor(1, 15), QColor(200, 0, 0));
        edit->setStyleSheet(QString());
        QCOMPARE(tip(), "<span>%1</span>"_s.arg(name.toHtmlEscaped()));
        QToolTip::hideText();
        QTRY_VERIFY(!QToolTip::isVisible());
        panel->enterEditMode();
        QVERIFY(!endsInDots());
        QCOMPARE(tip(), QString());
        edit->setFocus();
        QTRY_VERIFY(edit->hasFocus());
        edit->setCursorPosition(edit->text().size());
        QTest::keyClick(edit, Qt::Key_Return);
        QVERIFY(!edit->hasFocus());
        panel->enterViewMode();
        QCOMPARE(edit->cursorPosition(), 0);
    }

    void soundReachesButtonTilesAndAllWindows()
    {
        const auto heard = [this] {
            return child->commands().filter("volume"_s).join(' ').section(' ', -1);
        };
        const auto at = [this](int volume) {
            find<QSlider>("soundSlider")->setValue(volume);
            return pictureOf("soundButton");
        };
        const QImage silent = at(0);
        const QImage quiet = at(1);
        const QImage loud = at(50);
        QVERIFY(lit(silent) < lit(quiet) && lit(quiet) < lit(loud));
        QCOMPARE(at(100), loud);
        QCOMPARE(at(49), quiet);
        QTRY_COMPARE(heard(), "49"_s);
        press("soundButton");
        QTRY_COMPARE(heard(), "0"_s);
        const QImage off = pictureOf("soundButton");
        QVERIFY(off != silent && off != quiet && off != loud);
        for (const auto *panel : {other->findChild<ControlPanel *>(), new ControlPanel(window)}) {
            QCOMPARE(panel->volume(), 49);
            QVERIFY(!panel->isSoundEnabled());
            for (const char *name : {"soundSlider", "speedSelector", "speedSlider"})
                QVERIFY2(panel->findChild<QWidget *>(name)->isHidden(), name);
        }
        press("soundButton");
        QTRY_COMPARE(heard(), "49"_s);
        QCOMPARE(pictureOf("soundButton"), quiet);
        QVERIFY(ControlPanel().isSoundEnabled());
    }

    void slidersUnfoldUnderTheMouse()
    {
        const auto seen = [this] {
            QStringList names;
            for (const char *name :
                 {"soundSlider", "zoomSlider", "speedSelector", "speedSlider", "speedLabel"})
                names += find(name)->isVisible() ? QStringList(name) : QStringList();
            return names.join(' ');
        };
        auto *slider = find<QSlider>("speedSlider");
        QCOMPARE(seen(), QString());
        send(QEvent(QEvent::Enter), "soundControl");
        QCOMPARE(seen(), "soundSlider"_s);
        send(QEvent(QEvent::Leave), "soundControl");
        press("showRecordsButton");
        QVERIFY(strip()->isVisible());
        QCOMPARE(seen(), "zoomSlider speedSelector"_s);
        const QImage plain = pictureOf("speedButton");
        QVERIFY(lit(plain) != 0);
        send(QEvent(QEvent::HoverEnter), "speedSelector");
        QCOMPARE(seen(), "zoomSlider speedSelector speedSlider speedLabel"_s);
        slider->setValue(3);
        QVERIFY(pictureOf("speedButton") != plain);
        send(QEvent(QEvent::HoverLeave), "speedSelector");
        // A speed above 1x stays readable.
        QCOMPARE(seen(), "zoomSlider speedSelector speedLabel"_s);
        QCOMPARE(find<QLabel>("speedLabel")->text(), "8x"_s);
        press("speedButton");
        QCOMPARE(slider->value(), 0);
        QCOMPARE(pictureOf("speedButton"), plain);
        press("hideRecordsButton");
        QVERIFY(!strip()->isVisible());
        QCOMPARE(seen(), QString());
    }

    void qualityMenu()
    {
        const ControlPanel fresh;
        QVERIFY(fresh.findChildren<QRadioButton *>().last()->isChecked());
        const auto items = find<ControlPanel>()->findChildren<QRadioButton *>();
        QString chosen;
        for (QRadioButton *item : items) {
            item->click();
            const QString dump = dumpOf(*find<Player::VideoWidget>());
            chosen += item->text() + dump.section(" quality: ", 1).left(1) + ' ';
        }
        QCOMPARE(chosen, "Low0 Middle1 High2 Auto1 "_s);
        items.first()->click();
        open(world.localCamera(9));
        QVERIFY(items.last()->isChecked() && !items.first()->isChecked());
    }

    void theArchivePanelMovesTheStrip()
    {
        press("prevDayButton");
        QCOMPARE(strip()->startValue().date(), QDate(2026, 8, 30));
        // They tell where they lead.
        QCOMPARE(find("prevDayButton")->accessibleName(), "Aug 29"_s);
        press("nextDayButton");
        press("nextDayButton");
        QCOMPARE(strip()->startValue().date(), QDate(2026, 9, 1)); // tomorrow

        const auto seconds = [this] { return strip()->startValue().secsTo(strip()->endValue()); };
        auto *slider = find<QSlider>("zoomSlider");
        const qint64 whole = seconds();
        press("zoomInButton");
        const qint64 closer = seconds();
        QVERIFY(closer < whole && slider->value() > 0);
        press("zoomOutButton");
        QCOMPARE(seconds(), whole);
        slider->setValue(slider->maximum());
        QVERIFY(seconds() < closer);
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
            QCOMPARE(days->cursor().shape(), Qt::PointingHandCursor);
            QTest::mouseClick(days, Qt::LeftButton, Qt::NoModifier,
                              days->mapFrom(calendar()->window(), fifth));
            QTRY_VERIFY(!QApplication::activePopupWidget());
            QCOMPARE(strip()->startValue().date(), QDate(2026, 8, 5));
        }
    }

    void daysWithRecordsAreWhite_data()
    {
        // "+1" adds a camera and waits for its days, "~1" doesn't wait, "-1" closes its tile, and
        // "!1" takes the archive's right from it; "=" opens the same grid again, "new" a new one.
        rows<QString, QList<int>>({"steps", "white"},
                                  {{"two", "+1 +2", {3, 4}},
                                   {"one goes", "+1 +2 -1", {4}},
                                   {"all go", "+1 +2 new", {}},
                                   {"one goes before its days come", "~1 -1 +2", {4}},
                                   {"the newest number decides", "+1 +3 -1", {3}},
                                   {"five off the newest three", "+1 +3 -1 +1 -3", {}},
                                   {"an equal grid", "+1 = +2", {3, 4}},
                                   {"a camera that shows its archive no more", "+1 !1 =", {}}});
    }

    void daysWithRecordsAreWhite()
    {
        const auto [steps, white] = row<QString, QList<int>>();
        API::Server server(QVariantMap{{"id"_s, "cloud"_s}});
        const QVector<API::CameraPtr> cameras{API::CameraPtr(), world.cloudCamera(1),
                                              world.cloudCamera(2), world.cloudCamera(3)};
        open(API::CameraPtr());
        openCalendar();
        const QStringList all = steps.split(' ');
        for (const QString &step : all) {
            const int id = step.mid(1).toInt();
            const API::CameraPtr camera = cameras.at(id);
            if (step.startsWith('-')) {
                find<LayoutWidget>()->removeCamera(camera);
            } else if (step.startsWith('!')) {
                camera->update(&server, QVariantMap{{"id"_s, id}});
            } else if (id != 0) {
                QSignalSpy received(camera.data(), &API::Camera::calendarChanged);
                window->addToLayout(camera);
                QVERIFY(step.startsWith('~') || received.wait());
            } else {
                find<InfoPanel>()->enterViewMode(); // nobody is here to be asked about the edit
                const API::LayoutPtr present = find<LayoutWidget>()->workingLayout();
                QVERIFY(window->openLayout(step == "=" ? API::LayoutPtr::create(*present)
                                                       : API::LayoutPtr::create()));
            }
        }
        QTRY_VERIFY(world.requestedDays(1).contains(QDate(2026, 2, 28))); // there is no 31st
        openCalendar();
        // Painted anew, and soon on the screen as well.
        QWidget *popup = calendar()->window();
        QTRY_COMPARE(whiteDays(popup->grab()), white);
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

    void send(QEvent event, const char *name) { QCoreApplication::sendEvent(find(name), &event); }
    void press(const char *name) { find<QPushButton>(name)->click(); }
    QImage pictureOf(const char *name) const { return find(name)->grab().toImage(); }
    Timeline *strip() const { return find<Timeline>(); }
    CalendarPopup *calendar() const { return find<CalendarPopup>(); }

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

    /// The days that are white in a picture of the calendar.
    QList<int> whiteDays(const QPixmap &picture) const
    {
        const QMap<int, QRect> all = cells();
        QList<int> days = all.keys();
        const auto isGrey = [&](int day) { return lit(picture.copy(all[day]).toImage()) == 0; };
        days.erase(std::remove_if(days.begin(), days.end(), isGrey), days.end());
        return days;
    }

    ArchiveWorld world;
    QScopedPointer<FakeClock> clock;
    QScopedPointer<ScriptedChild> child;
    App::Application *application = App::application();
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
