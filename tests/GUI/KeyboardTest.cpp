// SPDX-License-Identifier: MIT
// The main window by the keyboard alone: where Tab goes, what shows it, what the keys do there.
#include "API/LocalServer.h"
#include "App/Application.h"
#include "GUI/CameraWidget.h"
#include "GUI/Colours.h"
#include "GUI/ControlPanel.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutCard.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/RosterWidget.h"
#include "GUI/Timeline.h"
#include "tests/GUI/GridWorld.h"
#include "tests/support/MisbehavingServer.h"

using namespace ZorvaneClient::GUI;

namespace {

/// A card by its caption, a tile by its camera, a server by its name; all else by its object.
QString nameOf(const QWidget *widget)
{
    if (!widget || widget->isWindow())
        return "nothing"_s;
    if (const auto *tile = qobject_cast<const Player::VideoWidget *>(widget))
        return "tile_"_s + tile->camera()->name();
    if (const auto *card = qobject_cast<const Preview *>(widget)) {
        const QString caption = card->findChild<QLabel *>("cameraName"_s)->text();
        return "card_"_s + caption.section(' ', 0, 0); // without the state
    }
    if (widget->objectName() == "expandButton"_s)
        return "server_"_s + widget->accessibleName();
    if (widget->objectName() == "settingsButton"_s)
        return "settingsButton_"_s + widget->parentWidget()->objectName();
    return qobject_cast<const Timeline *>(widget) ? "strip"_s : widget->objectName();
}

/// Such as "Shift+F10".
void press(const QString &keys)
{
    QWidget *focused = QApplication::focusWidget();
    const QString key = keys.section('+', -1);
    const int code = QMetaEnum::fromType<Qt::Key>().keyToValue(qPrintable("Key_"_s + key));
    if (keys.startsWith("Held"_s)) {
        QKeyEvent again(QEvent::KeyPress, code, Qt::NoModifier, QString(), true);
        QCoreApplication::sendEvent(focused, &again);
        return;
    }
    QTest::keyClick(focused ? focused : QApplication::activeWindow(), Qt::Key(code),
                    keys.startsWith("Shift"_s) ? Qt::ShiftModifier : Qt::NoModifier);
}

/// A broken line goes along it, inside of the border of a card or tile, and all of it is in view.
bool isMarked(QWidget *widget)
{
    const QImage picture = widget->grab().toImage();
    const int inset = qMin(picture.width(), picture.height()) > 60 ? 3 : 0;
    int breaks = 0;
    for (int x = inset + 1; x < picture.width() - inset; ++x) {
        const auto isLight = [&](int at) { return picture.pixelColor(at, inset).blue() > 150; };
        breaks += isLight(x) != isLight(x - 1) ? 1 : 0;
    }
    return breaks >= picture.width() / 8 &&
           widget->visibleRegion().boundingRect().contains(widget->rect());
}

} // namespace

class KeyboardTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<API::CameraPtr>("API::CameraPtr");
        useServiceAt(MisbehavingServer::deadPort());
        addServerToRoster("s"_s, {"a", "b", "c", "d"});
        API::CloudAPIClient().addLocalServer(
            API::LocalServerPtr::create("lan"_s, "127.0.0.1"_s, 1, QString()));
        const API::LayoutPtr layout = layoutOf("a b"_s);
        layout->setName("Night"_s);
        API::CloudAPIClient().addLayout(layout);
    }

    void init()
    {
        window.reset(new MainWindow);
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.data()));
        window->findChild<RosterWidget *>()->updateRoster();
        window->findChild<LayoutListWidget *>()->updateLayouts();
        window->setRosterMode();
        window->openLayout(layoutOf("b . | . a"_s));
        window->showArchivePanels();
        QCoreApplication::processEvents();
    }

    void cleanup()
    {
        if (QWidget *popup = QApplication::activePopupWidget())
            popup->close();
        window.reset();
    }

    void tabGoesRound()
    {
        const QStringList stops =
            "rosterButton layoutsButton settingsButton_ToolBar searchEdit hideRosterButton "
            "server_s card_a card_b card_c card_d server_lan settingsButton_controlBar "
            "layoutNameEdit gridSizeButton saveLayoutButton cancelLayoutButton tile_c tile_b "
            "tile_a "
            "prevDayButton dateEdit nextDayButton zoomOutButton zoomSlider zoomInButton strip "
            "hideRecordsButton goLiveButton pauseButton timeLabel speedButton speedSlider "
            "soundButton qualityButton fullscreenButton"_s.split(' ');
        // A slider unfolds while the focus is beside it, on the left of the sound's button.
        // The one that comes last lies first.
        window->openLayout(layoutOf(". b | . a"_s));
        window->addToLayout(cameraNamed("c"_s));
        window->showArchivePanels();
        window->resize(0, 0); // the list has to scroll
        QCoreApplication::processEvents();
        QStringList names;
        QStringList faults;
        for (const char *key : {"Tab", "Shift+Backtab"}) {
            tabTo(stops.first());
            do {
                press(key);
                QWidget *focused = QApplication::focusWidget();
                // Inside the date it goes from part to part.
                if (names.isEmpty() || names.last() != nameOf(focused))
                    names.append(nameOf(focused));
                if (!isMarked(focused))
                    faults.append(names.last() + " is not marked"_s);
                const bool isClicked =
                    qobject_cast<QAbstractButton *>(focused) || qobject_cast<Preview *>(focused);
                if (isClicked && focused->cursor().shape() != Qt::PointingHandCursor)
                    faults.append(names.last() + " has no hand"_s);
            } while (names.last() != stops.first());
        }
        QStringList expected = stops.mid(1) + stops.mid(0, 1);
        for (int i = int(stops.size()) - 1; i >= 0; --i)
            expected.append(stops.at(i) == "speedSlider"_s ? "soundSlider"_s : stops.at(i));
        QCOMPARE(names, expected);
        QCOMPARE(faults.join(", "), QString());
    }

    void keysActWhereTheFocusIs_data()
    {
        // Layouts and Settings are the pages of the side bar, Edit begins to edit the view.
        rows<QString, QString, QString>(
            {"keys", "place", "effect"},
            {{"a card", "Return", "card_c", "view c, c of 4 at card_c"},
             {"menu of a card", "Menu", "card_b", "Open camera"},
             {"the other keys for it", "Shift+F10", "card_b", "Open camera"},
             {"menu of a tile", "Menu", "tile_a", "Settings"},
             {"a tile", "Return", "tile_a", "alone b . | . a, a of 4 at tile_a"},
             {"menu of a LAN server", "Menu", "server_lan", "Edit"},
             {"a cloud server has none", "Menu", "server_s", "view b . | . a, b of 4 at server_s"},
             {"none of another row", "Hidden Menu", "showPBtn",
              "view b . | . a, b of 0 at showPBtn"},
             {"held down", "Held+Return", "pauseButton", "view b . | . a, b of 4 at pauseButton"},
             {"a server", "Return", "server_s", "view b . | . a, b of 0 at server_s"},
             {"the date", "Return", "dateEdit", "calendar"},
             {"saved", "Edit Return", "saveLayoutButton",
              "view b . | . a, b of 4 at settingsButton_settingsPage"},
             {"a new layout", "Layouts Return", "addLayoutButton",
              "edit . . | . ., none of 4 at layoutNameEdit"},
             {"a layout", "Layouts Return", "card_Night", "view a b, a of 0 at card_Night"},
             {"languages", "Settings Return", "languageBox", "list"},
             {"the time in records", "Return", "timeLabel", "list"},
             {"the size of the grid", "Edit Return", "gridSizeButton", "list"},
             {"another key", "Space", "pauseButton", "view b . | . a, b of 4 at playButton"},
             {"play in place of pause", "Return", "pauseButton",
              "view b . | . a, b of 4 at playButton"}});
    }

    void keysActWhereTheFocusIs()
    {
        const auto [keys, place, effect] = row<QString, QString, QString>();
        if (keys.startsWith("Layouts"_s))
            window->setLayoutsMode();
        else if (keys.startsWith("Settings"_s))
            window->setSettingsMode();
        else if (keys.startsWith("Edit"_s))
            window->startLayoutEditor();
        else if (keys.startsWith("Hidden"_s))
            window->hideRosterAndToolbar();
        tabTo(place);
        press(keys.section(' ', -1));
        QTRY_COMPARE(state(), effect);
        if (const auto *name = qobject_cast<QLineEdit *>(QApplication::focusWidget()))
            QCOMPARE(name->selectedText(), name->text()); // the first letter replaces it
    }

    void screenReadersSeeAndPress()
    {
        using A = QAccessible;
        const auto told = [](const QAccessibleInterface *node) {
            return "%1: %2"_s.arg(node->text(A::Name), node->text(A::Description));
        };
        window->findChild<RosterWidget *>()->updateRoster(); // from then on cards say their state
        tabTo("card_c"_s);
        QAccessibleInterface *card = A::queryAccessibleInterface(QApplication::focusWidget());
        QVERIFY(card->state().focused && !card->state().selected);
        QCOMPARE(told(card), "c (offline): Camera"_s);
        // An open one has an edge of three pixels.
        const auto edge = [seen = QPointer<QWidget>(QApplication::focusWidget())] {
            const QImage picture = seen->grab().toImage();
            int blue = 0;
            while (picture.pixelColor(blue, picture.height() / 2) == Colours::accent())
                ++blue;
            return blue;
        };
        QCOMPARE(edge(), 0);
        card->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QTRY_COMPARE(told(card), "c (offline): Camera, open"_s);
        QVERIFY(card->state().selected);
        window->findChild<QWidget *>("focusRing"_s)->hide(); // lies over it
        QCOMPARE(edge(), 3);
        card->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
        QTRY_COMPARE(state(), "Open camera"_s);
        QApplication::activePopupWidget()->close();

        auto *tile = window->findChild<Player::VideoWidget *>();
        QAccessibleInterface *seen = A::queryAccessibleInterface(tile);
        const QDateTime moment(QDate(2026, 3, 5), QTime(10, 6, 7));
        tile->setTime(moment);
        const QString time = QLocale().toString(moment.date(), QLocale::LongFormat) + ", 10:06:07";
        QCOMPARE(told(seen), "c: Camera c is offline, "_s + time);
        seen->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
        QCOMPARE(nameOf(QApplication::focusWidget()), "tile_c"_s);
    }

    void theQualityMenuFollowsTheArrows()
    {
        QSignalSpy middle(window->findChild<ControlPanel *>(), &ControlPanel::setMidQuality);
        const auto items = window->findChild<ControlPanel *>()->findChildren<QRadioButton *>();
        const auto lit = [&items] {
            QString texts;
            for (QRadioButton *item : items) {
                const QColor ground = item->grab().toImage().pixelColor(2, 2);
                texts += ground == Colours::accent() ? item->text() : QString();
            }
            return texts;
        };
        tabTo("qualityButton"_s);
        QStringList seen;
        QTimer::singleShot(0, window.data(), [&] {
            QEvent entered(QEvent::Enter);
            QEvent left(QEvent::Leave);
            QWidget *menu = QApplication::activePopupWidget();
            for (const char *step : {"down", "down", "mouse", "down"}) {
                if (step == "mouse"_s)
                    QCoreApplication::sendEvent(items.first(), &entered);
                else
                    QTest::keyClick(menu, Qt::Key_Down);
                seen.append(lit());
            }
            QTest::keyClick(menu, Qt::Key_Return);
            QCoreApplication::sendEvent(items.first(), &left);
        });
        press("Return"_s);
        QCOMPARE(seen, (QStringList{"Low", "Middle", "Low", "Middle"}));
        QCOMPARE(middle.count(), 1);
        QVERIFY(items.at(1)->isChecked() && !items.last()->isChecked());
        QCOMPARE(lit(), QString());
    }

    void theMouseTakesTheFrameAway()
    {
        tabTo("tile_a"_s);
        QWidget *tile = QApplication::focusWidget();
        window->resize(window->size() + QSize(60, 40));
        QCoreApplication::processEvents();
        QVERIFY(isMarked(tile));
        // Two pixels wide, with gaps as long as its dashes.
        const QImage frame = tile->grab().toImage();
        QVector<int> columns(8);
        for (int x = 0; x < 8; ++x) {
            for (int y = 20; y < 100; ++y)
                columns[x] += frame.pixelColor(x, y) == Colours::accent() ? 1 : 0;
        }
        QCOMPARE(columns, QVector<int>({0, 0, 0, 40, 40, 0, 0, 0}));
        QTest::mousePress(tile, Qt::LeftButton);
        QVERIFY(tile->hasFocus() && !isMarked(tile));
        auto *field = window->findChild<QLineEdit *>("searchEdit"_s);
        field->setFocus();
        QVERIFY(!isMarked(field));
        press("Tab"_s);
        QVERIFY(isMarked(QApplication::focusWidget()));
        // A list has no frame of its own: what it holds has.
        for (const char *key : {"Tab", "Backtab"}) {
            QTest::mousePress(tile, Qt::LeftButton);
            window->findChild<RosterWidget *>()->setFocus();
            press(key);
            QCOMPARE(nameOf(QApplication::focusWidget()), "server_s"_s);
            QVERIFY(isMarked(QApplication::focusWidget()));
        }
        // What is hidden has the keys no longer, and nothing else gets them unasked.
        window->hideRosterAndToolbar();
        QCOMPARE(nameOf(QApplication::focusWidget()), "nothing"_s);
    }

private:
    /// With Tab alone.
    void tabTo(const QString &name)
    {
        for (int i = 0; i < 100 && nameOf(QApplication::focusWidget()) != name; ++i)
            press("Tab"_s);
        QCOMPARE(nameOf(QApplication::focusWidget()), name);
    }

    /// The entry that a menu has come to or the popup that is open; else mode, cells, active camera
    /// of how many cards, and where the focus is.
    QString state() const
    {
        const QWidget *popup = QApplication::activePopupWidget();
        if (const auto *menu = qobject_cast<const QMenu *>(popup))
            return menu->activeAction() ? menu->activeAction()->text() : "no entry"_s;
        if (popup && popup->findChild<QWidget *>("focusRing"_s))
            return "a frame in what shows itself"_s;
        if (popup)
            return popup->findChild<QCalendarWidget *>() ? "calendar"_s : "list"_s;
        const auto cards = window->findChildren<CameraWidget *>();
        const auto seen = std::count_if(cards.begin(), cards.end(),
                                        [](const QWidget *card) { return card->isVisible(); });
        const bool isEdited = window->findChild<InfoPanel *>()->mode() == InfoPanel::EditMode;
        const QString mode = isEdited                         ? "edit"_s
                             : gridOf(*window)->isMaximised() ? "alone"_s
                                                              : "view"_s;
        const API::CameraPtr active = window->findChild<Timeline *>()->activeCamera();
        return "%1 %2, %3 of %4 at %5"_s
            .arg(mode, cellsOf(*gridOf(*window)), active ? active->name() : "none"_s)
            .arg(seen)
            .arg(nameOf(QApplication::focusWidget()));
    }

    QScopedPointer<MainWindow> window;
};

int main(int argc, char **argv)
{
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    KeyboardTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "KeyboardTest.moc"
