// SPDX-License-Identifier: MIT
// The main window by the keyboard alone: where Tab goes, what shows it, what the keys do there.
#include "API/LocalServer.h"
#include "App/Application.h"
#include "GUI/Colours.h"
#include "GUI/ControlPanel.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutCard.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LoginDialog.h"
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
    const int code = key == "Backtab"_s ? int(Qt::Key_Backtab) : QKeySequence(key)[0];
    QTest::keyClick(focused ? focused : QApplication::activeWindow(), Qt::Key(code),
                    keys.startsWith("Shift"_s) ? Qt::ShiftModifier : Qt::NoModifier);
}

/// A frame in two colours goes all round it, and nothing of it lies out of view.
bool isMarked(QWidget *widget)
{
    const QImage picture = widget->grab().toImage();
    // A shadow changes its colours a little.
    const auto isFrame = [&](int x, int y) {
        const QColor colour = picture.pixelColor(x, y);
        return qAbs(colour.red() - colour.blue()) > 180 || colour.lightness() < 40;
    };
    // Of a card or tile, inside of its border.
    const int inset = qMin(picture.width(), picture.height()) > 60 ? 3 : 0;
    const int right = picture.width() - 1 - inset;
    const int bottom = picture.height() - 1 - inset;
    QSet<bool> isLight;
    for (int x = inset + 4; x < right - 4; ++x) {
        if (!isFrame(x, inset) || !isFrame(x, bottom))
            return false;
        isLight.insert(picture.pixelColor(x, inset).lightness() > 100);
    }
    return isFrame(inset, bottom / 2) && isFrame(right, bottom / 2) && isLight.size() == 2 &&
           widget->visibleRegion().boundingRect().contains(widget->rect());
}

QString popupShown()
{
    const QWidget *popup = QApplication::activePopupWidget();
    if (!popup)
        return QString();
    if (const auto *menu = qobject_cast<const QMenu *>(popup))
        return "menu "_s + (menu->activeAction() ? menu->activeAction()->text() : QString());
    const bool isMarkedToo = popup->findChild<QWidget *>("focusRing"_s); // it shows what is chosen
    return (popup->findChild<QCalendarWidget *>() ? "calendar"_s : "list"_s) +
           (isMarkedToo ? " in a frame" : "");
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
            "hideRecordsButton goLiveButton pauseButton speedButton soundButton qualityButton "
            "fullscreenButton"_s.split(' ');
        // The one that comes last lies first.
        window->openLayout(layoutOf(". b | . a"_s));
        window->addToLayout(cameraNamed("c"_s));
        window->showArchivePanels();
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
            expected.append(stops.at(i));
        QCOMPARE(names, expected);
        QCOMPARE(faults.join(", "), QString());
    }

    void keysActWhereTheFocusIs_data()
    {
        // Layouts and Settings are the pages of the side bar, Edit begins to edit the view.
        rows<QString, QString, QString>(
            {"keys", "place", "effect"},
            {{"a card", "Return", "card_c", "view c"},
             {"number pad", "Enter", "card_c", "view c"},
             {"menu of a card", "Menu", "card_b", "menu Open camera"},
             {"the other keys for it", "Shift+F10", "card_b", "menu Open camera"},
             {"a plain F10", "F10", "card_b", ""},
             {"menu of a tile", "Menu", "tile_a", "menu Settings"},
             {"a tile", "Return", "tile_a", "active a"},
             {"menu of a LAN server", "Menu", "server_lan", "menu Edit"},
             {"a cloud server has none", "Menu", "server_s", ""},
             {"a server", "Return", "server_s", "closed"},
             {"menu of the view", "Menu", "settingsButton_settingsPage", "menu Edit view"},
             {"a button without a menu", "Menu", "zoomInButton", ""},
             {"the date", "Return", "dateEdit", "calendar"},
             {"a field", "Return", "searchEdit", ""},
             {"saved", "Edit Return", "saveLayoutButton",
              "view b . | . a, at settingsButton_settingsPage"},
             {"a layout", "Layouts Return", "card_Night", "view a b"},
             {"menu of a layout", "Layouts Menu", "card_Night", "menu Open"},
             {"languages", "Settings Return", "languageBox", "list"},
             {"play in place of pause", "Return", "pauseButton", "at playButton"}});
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
        tabTo(place);
        const QString before = state();
        QSignalSpy active(window.data(), &MainWindow::cameraActivated);
        press(keys.section(' ', -1));
        QCoreApplication::processEvents();
        const QWidget *cards = window->findChildren<QWidget *>("container"_s).last();
        const QString shown = state();
        QStringList changes = QStringList{popupShown()};
        if (shown.startsWith("view"_s) && shown != before)
            changes.append(shown);
        else if (!active.isEmpty())
            changes.append("active "_s + active.last().first().value<API::CameraPtr>()->name());
        if (nameOf(QApplication::focusWidget()) != place && popupShown().isEmpty())
            changes.append("at "_s + nameOf(QApplication::focusWidget()));
        if (place.startsWith("server"_s) && !cards->isVisible())
            changes.append("closed"_s);
        changes.removeAll(QString());
        QCOMPARE(changes.join(", "_s), effect);
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
            QWidget *menu = QApplication::activePopupWidget();
            seen.append(lit());
            for (int i = 0; i < 2; ++i) {
                QTest::keyClick(menu, Qt::Key_Down);
                seen.append(lit());
            }
            QEvent entered(QEvent::Enter);
            QCoreApplication::sendEvent(items.first(), &entered);
            seen.append(lit());
            QTest::keyClick(menu, Qt::Key_Down);
            seen.append(lit());
            QTest::keyClick(menu, Qt::Key_Return);
            QEvent left(QEvent::Leave);
            QCoreApplication::sendEvent(items.first(), &left);
        });
        press("Return"_s);
        QCOMPARE(seen, (QStringList{"", "Low", "Middle", "Low", "Middle"}));
        QCOMPARE(middle.count(), 1);
        QVERIFY(items.at(1)->isChecked() && !items.last()->isChecked());
        QCOMPARE(lit(), QString());
    }

    /// Boxes and buttons would draw another one inside.
    void theFrameIsTheOnlyOne()
    {
        QImage picture(40, 20, QImage::Format_RGB32);
        picture.fill(Qt::white);
        const QImage before = picture;
        QStyleOptionFocusRect option;
        option.rect = picture.rect();
        option.state = QStyle::State_Enabled | QStyle::State_KeyboardFocusChange;
        QPainter painter(&picture);
        window->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, window.data());
        QCOMPARE(picture, before);
    }

    /// Its sheet has borders and lines for most of what Tab goes to.
    void theSignInShowsTheFocusToo()
    {
        LoginDialog dialog;
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        for (const char *name : {"forgetBox", "remindButton", "settingsButton"}) {
            auto *part = dialog.findChild<QWidget *>(name);
            const QImage idle = part->grab().toImage();
            tabTo(nameOf(part));
            QVERIFY2(part->grab().toImage() != idle, name);
            QCOMPARE(isMarked(part), name == "forgetBox"_s);
        }
    }

    void theMouseTakesTheFrameAway()
    {
        tabTo("tile_a"_s);
        QWidget *tile = QApplication::focusWidget();
        window->resize(window->size() + QSize(60, 40));
        QCoreApplication::processEvents();
        QVERIFY(isMarked(tile));
        QTest::mousePress(tile, Qt::LeftButton);
        QVERIFY(tile->hasFocus() && !isMarked(tile));
        auto *field = window->findChild<QLineEdit *>("searchEdit"_s);
        field->setFocus();
        QVERIFY(!isMarked(field));
        press("Tab"_s);
        QVERIFY(isMarked(QApplication::focusWidget()));
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

    QString state() const
    {
        const bool isEdited = window->findChild<InfoPanel *>()->mode() == InfoPanel::EditMode;
        return (isEdited ? "edit "_s : "view "_s) + cellsOf(*gridOf(*window));
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
