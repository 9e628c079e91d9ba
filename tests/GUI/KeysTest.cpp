// SPDX-License-Identifier: MIT
// What keys do in a window with three saved layouts, of which the first is open.
#include "App/Settings.h"
#include "GUI/ActivityWatch.h"
#include "GUI/Colours.h"
#include "GUI/ControlPanel.h"
#include "GUI/InfoPanel.h"
#include "GUI/KeyCard.h"
#include "GUI/KeyMap.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/PlayerNotification.h"
#include "GUI/Timeline.h"
#include "GUI/Tour.h"
#include "GUI/TourButton.h"
#include "tests/GUI/GridWorld.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/MisbehavingServer.h"

using namespace ZorvaneClient::GUI;
using namespace std::chrono_literals;

class KeysTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<API::CameraPtr>("API::CameraPtr");
        qRegisterMetaType<API::LayoutPtr>("API::LayoutPtr");
        useServiceAt(MisbehavingServer::deadPort());
        addServerToRoster("s"_s, {"a", "b", "c", "d", "e", "f"});
        for (const QString &words :
             {"Yard: e f"_s, "Gate: a . b c | . d f:2x2 . | e . . ."_s, "Night: d"_s}) {
            const API::LayoutPtr layout = layoutOf(words.section(": "_s, 1));
            layout->setName(words.section(": "_s, 0, 0));
            API::CloudAPIClient().addLayout(layout);
        }
    }

    void cleanup() { window.reset(); }

    /// Keys, and "=b" for opening a camera, ">f" for one made active, "?Yard" for a search.
    void keys_data()
    {
        rows<QString, QString>({"keys", "shown"},
                               {{"pause", "Space", "Gate >a paused"},
                                {"play", "Space Space", "Gate >a"},
                                {"whole screen", "F", "Gate >a fullscreen"},
                                {"and back", "F11 F11", "Gate >a"},
                                {"Escape", "F Esc", "Gate >a"},
                                {"records", "R", "Gate >a records"},
                                {"no records", "R R", "Gate >a"},
                                {"live", "R L", "Gate >a"},
                                {"already live", "Space L", "Gate >a paused"},
                                {"snapshot", "S", "Gate >a hint"},
                                {"mute", "M", "Gate >a mute"},
                                {"names", "N", "Gate >a named"},
                                {"no names", "N N", "Gate >a"},
                                {"alone", "Return", "Gate >a alone"},
                                {"and all again", "Enter F Esc", "Gate >a fullscreen"},
                                {"alone, the next one", "Return Ctrl+Right", "Gate >b alone"},
                                {"no seeking live", "Right Shift+Left =", "Gate >a"},
                                {"first layout", "Ctrl+3 Ctrl+1", "Gate >a"},
                                {"last layout", "Ctrl+3", "Yard >e"},
                                {"no such layout", "Ctrl+4", "Gate >a"},
                                {"beside a search", "?Yard Ctrl+2", "Night >d"},
                                {"next", "PgDown", "Night >d"},
                                {"next round the end", "PgDown PgDown PgDown", "Gate >a"},
                                {"previous", "PgUp", "Yard >e"},
                                {"next to none", "=b PgDown", "Gate >a"},
                                {"before none", "=b PgUp", "Yard >e"},
                                {"beside before nearer", "Ctrl+Down", "Gate >e"},
                                {"nearer", "Ctrl+Right", "Gate >b"},
                                {"at the edge", "Ctrl+Left", "Gate >a"},
                                {"to a large tile", ">e Ctrl+Right", "Gate >f"},
                                {"from a large tile", ">f Ctrl+Left", "Gate >d"},
                                {"up", ">e Ctrl+Up", "Gate >a"},
                                {"past a corner", ">d Ctrl+Down", "Gate >e"},
                                {"from a camera of elsewhere", "=b >a Ctrl+Up", "b >b"}});
    }

    void keys()
    {
        openWindow();
        const auto [keys, expected] = row<QString, QString>();
        press(keys);
        QTRY_COMPARE(shown(), expected);
    }

    void pressedKeys_data()
    {
        const int none = Qt::NoModifier;
        const int shift = Qt::ShiftModifier;
        rows<int, int, int, int>(
            {"key", "modifiers", "action", "number"},
            {
                {"of the Russian layout", 0x042b, none, int(KeyAction::Snapshot), 0},
                {"with Ctrl", 0x0410, Qt::ControlModifier, int(KeyAction::Search), 0},
                {"number pad", Qt::Key_Plus, Qt::KeypadModifier, int(KeyAction::Speed), 1},
                {"shifted plus", Qt::Key_Plus, shift, int(KeyAction::Speed), 1},
                {"plus unshifted", Qt::Key_Equal, none, int(KeyAction::Speed), 1},
                {"minus", Qt::Key_Minus, none, int(KeyAction::Speed), -1},
                {"on", Qt::Key_Right, none, int(KeyAction::Seek), 10000},
                {"far back", Qt::Key_Left, shift, int(KeyAction::Seek), -60000},
                {"whole pictures", Qt::Key_0, none, int(KeyAction::ResetZoom), 0},
                {"too many modifiers", Qt::Key_F, Qt::ControlModifier | shift, -1, 0},
                {"of the desktop", Qt::Key_F11, Qt::AltModifier, -1, 0},
            });
    }

    void pressedKeys()
    {
        const auto [key, modifiers, action, number] = row<int, int, int, int>();
        const KeyRow *found = keyRow(key, Qt::KeyboardModifiers(modifiers));
        QCOMPARE(found ? int(found->action) : -1, action);
        QCOMPARE(found ? found->number : 0, number);
    }

    void noKeyWhileTyping()
    {
        openWindow();
        auto *choice = new QComboBox(window.data());
        choice->setEditable(true);
        QWidget *const owner = window.data();
        for (QWidget *field : QWidgetList{new QLineEdit(owner), new QSpinBox(owner),
                                          new QDateEdit(owner), new QTextEdit(owner), choice}) {
            field->show();
            field->setFocus();
            press("R F11 PgDown Ctrl+2 M Ctrl+Right F1");
            QCOMPARE(shown(), "Gate >a"_s);
            // Escape ends the typing, and so does a click elsewhere.
            press("Esc R");
            QCOMPARE(shown(), "Gate >a records"_s);
            field->setFocus();
            const QPoint tile = gridOf(*window)->mapTo(owner, QPoint(20, 20));
            QTest::mouseClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier, tile);
            press("R");
            QCOMPARE(shown(), "Gate >a"_s);
        }
    }

    void theKeyThatEndsTyping()
    {
        openWindow();
        window->startLayoutEditor();
        auto *name = window->findChild<QLineEdit *>("layoutNameEdit"_s);
        name->setFocus();
        QTest::keyClick(name, Qt::Key_Return);
        QVERIFY(!name->hasFocus() && !gridOf(*window)->isMaximised());
    }

    void whoComesFirst()
    {
        openWindow();
        QPushButton button(window.data());
        button.show();
        button.setFocus();
        QSignalSpy clicked(&button, &QPushButton::clicked);
        press("Space R");
        QCOMPARE(clicked.count(), 1);
        QCOMPARE(shown(), "Gate >a records"_s);
        // They would scroll.
        const QList<QScrollArea *> pages = window->findChildren<QScrollArea *>();
        for (QScrollArea *page : pages) {
            page->setFocus();
            press("PgDown");
        }
        QCOMPARE(shown(), "Yard >e"_s);

        QKeyEvent held(QEvent::KeyPress, Qt::Key_R, Qt::NoModifier, "r"_s, true);
        QCoreApplication::sendEvent(window.data(), &held);
        QVERIFY(held.isAccepted());
        QMenu menu(window.data());
        menu.popup(window->mapToGlobal(QPoint(5, 5)));
        QTest::keyClick(window.data(), Qt::Key_R);
        menu.close();
        QMessageBox box(window.data());
        box.open();
        QTest::keyClick(window.data(), Qt::Key_R);
        box.close();
        QCOMPARE(shown(), "Yard >e"_s);
    }

    void search()
    {
        openWindow();
        auto *field = window->findChild<QLineEdit *>("searchEdit"_s);
        for (const char *before :
             {"rosterButton", "layoutsButton", "settingsButton", "hideRosterButton"}) {
            window->findChild<QPushButton *>(QLatin1String(before))->click();
            field->setText("gate"_s);
            press("Ctrl+F M");
            QVERIFY(field->isVisible() && field->hasFocus());
            QCOMPARE(field->text(), "m"_s);
            press("Esc");
        }
        QCOMPARE(shown(), "Gate >a"_s);
    }

    void theCardListsAllKeys()
    {
        openWindow();
        press("F");
        for (const QString &closing : {"F1"_s, "Esc"_s, "click"_s}) {
            press("F1 R");
            const QPointer<KeyCard> card = window->findChild<KeyCard *>();
            QVERIFY(card && card->isVisible());
            const QPoint off =
                card->geometry().center() - window->mapToGlobal(window->rect().center());
            QVERIFY(off.manhattanLength() <= 5); // a frame
            const QImage picture = card->grab().toImage();
            const QPoint end = picture.rect().bottomRight(), frame(1, 1);
            for (const QPoint &place : {QPoint(), end})
                QCOMPARE(picture.pixelColor(place), Colours::accent());
            for (const QPoint &place : {frame, end - frame})
                QCOMPARE(picture.pixelColor(place), Colours::panel());
            // Two even columns of keys with their texts, and room round it all.
            const QList<QLabel *> labels = card->findChildren<QLabel *>();
            QCOMPARE(labels.first()->font().pixelSize(), 18);
            QStringList texts;
            QRegion taken;
            int left = 0;
            for (int i = 0; i < labels.size(); ++i) {
                const QRect place = labels.at(i)->geometry();
                QVERIFY(!taken.intersects(place));
                taken += place;
                left += place.x() == 24 ? 1 : 0;
                QVERIFY(i == 0 || i % 2 == 1 || place.y() == labels.at(i - 1)->y());
                texts << labels.at(i)->text();
            }
            QCOMPARE(taken.boundingRect(), card->rect().adjusted(24, 24, -24, -24));
            QCOMPARE(left, 1 + (int(labels.size()) / 2 + 1) / 2);
            for (const KeyRow &row : keyMap())
                QVERIFY(!row.text || texts.contains(KeyCard::tr(row.text)));
            for (const char *keys : {"F F11", "Shift+← →", "Ctrl+← → ↑ ↓", "Ctrl+1 … 9", "+ -"})
                QVERIFY2(texts.contains(QString::fromUtf8(keys)), keys);
            closing == "click"_s ? QTest::mouseClick(labels.last(), Qt::LeftButton)
                                 : press(closing);
            QTRY_VERIFY(!card);
            QCOMPARE(shown(), "Gate >a fullscreen"_s);
        }
    }

    /// Words: "on" with an interval of 30 s, seconds that pass, "hold", and "?", which is
    /// answered by the name of the layout that is opened, or by "-".
    void tours_data()
    {
        rows<QString, QString, QString>(
            {"layouts", "steps", "opened"},
            {{"in turn, in time", "abc", "on +29 ? +1 ? +30 ? +30 ?", "-bca"},
             {"while somebody is there", "abc", "on +29 hold +29 ? +1 ?", "-b"},
             {"missed ones are not made up for", "abc", "on +300 ? ?", "b-"},
             {"a clock set back", "abc", "on -3600 ? +29 ? +1 ?", "--b"},
             {"too fast", "abc", "on1 +4 ? +1 ?", "-b"},
             {"none", "", "on +30 ?", "-"},
             {"one layout", "a", "on +30 ?", "-"}});
    }

    void tours()
    {
        const auto [names, steps, opened] = row<QString, QString, QString>();
        QList<API::LayoutPtr> layouts;
        for (const QChar name : names) {
            layouts << API::LayoutPtr::create();
            layouts.last()->setName(name);
        }
        Tour tour;
        QDateTime now(QDate(2026, 3, 5), QTime(12, 0));
        API::LayoutPtr at = layouts.value(0);
        QString answers;
        for (const QString &step : steps.split(' ')) {
            now = now.addSecs(step.toInt());
            if (step.startsWith("on"_s))
                tour.start(now, std::chrono::seconds(step == "on1"_s ? 1 : 30));
            else if (step == "hold"_s)
                tour.hold(now);
            if (step != "?"_s)
                continue;
            const API::LayoutPtr next = tour.next(now, layouts, at);
            answers += next ? next->name() : "-"_s;
            at = next ? next : at;
        }
        QCOMPARE(answers, opened);
    }

    void aTourOfTheWindow()
    {
        openWindow();
        FakeClock clock(QDateTime(QDate(2026, 3, 5), QTime(12, 0)));
        App::settings().setValue("tour/intervalSeconds"_s, 30);
        const auto *button = window->findChild<TourButton *>();
        const QList<QAction *> choices = button->menu()->actions();
        QVERIFY(choices.first()->isChecked());
        const auto shownAfter = [&](int seconds) {
            clock.advance(seconds);
            expireTimers(1s, window.data());
            return window->findChild<InfoPanel *>()->layoutName();
        };
        const auto hints = [this] {
            QStringList texts;
            for (const auto *hint : gridOf(*window)->findChildren<PlayerNotification *>())
                texts += hint->findChild<QLabel *>("messageLabel"_s)->text();
            return texts;
        };
        press("T");
        QCOMPARE(shown(), "Gate >a hint"_s);
        QCOMPARE(hints(), QStringList{"Saved layouts in turn, every 30 s."});
        QCOMPARE(shownAfter(29), "Gate"_s);
        QCOMPARE(shownAfter(1), "Night"_s);
        QVERIFY(button->property("isOn").toBool() && choices.at(2)->isChecked());

        QSignalSpy chosen(button, &TourButton::chosen);
        QList<int> seconds;
        for (int i = 0; i < choices.size(); ++i) {
            choices.at(i)->trigger();
            seconds += chosen.at(i).first().toInt();
        }
        QCOMPARE(seconds, QList<int>({0, 10, 30, 60, 300}));
        QVERIFY(hints().contains("The tour is over."_s));
        choices.at(1)->trigger();
        QWindow *handle = window->windowHandle();
        QMenu menu(window.data());
        QMessageBox box(window.data());
        const auto send = [this](QEvent::Type type) {
            QEvent event(type);
            QCoreApplication::sendEvent(this, &event);
        };
        using Act = std::function<void()>;
        const std::pair<Act, Act> stays[] = {
            {[&] { QTest::mouseMove(handle, QPoint(300, 300)); }, [] {}},
            {[&] { send(QEvent::KeyPress); }, [&] { send(QEvent::MouseButtonPress); }},
            {[&] { send(QEvent::Wheel); }, [] {}},
            {[&] { send(QEvent::DragMove); }, [&] { send(QEvent::TouchBegin); }},
            {[&] { window->startLayoutEditor(); },
             [&] { window->findChild<QPushButton *>("cancelLayoutButton"_s)->click(); }},
            {[&] { window->onPlayArchive(clock.now()); }, [&] { window->playLive(); }},
            {[&] { window->pause(); }, [&] { window->unpause(); }},
            {[&] { gridOf(*window)->toggleMaximised(gridOf(*window)->players().first()); },
             [&] { gridOf(*window)->showAllTiles(); }},
            {[&] { window->showArchivePanels(); }, [&] { window->hideArchivePanels(); }},
            {[&] {
                 QTest::mousePress(handle, Qt::LeftButton, {}, QPoint(300, 300));
                 clock.advance(9);
             },
             [&] { QTest::mouseRelease(handle, Qt::LeftButton, {}, QPoint(300, 300)); }},
            {[&] { menu.popup(QPoint(9, 9)); }, [&] { menu.close(); }},
            {[&] { box.open(); }, [&] { box.close(); }}};
        for (const auto &[begin, end] : stays) {
            const QString before = shownAfter(9);
            begin();
            QCOMPARE(shownAfter(9), before);
            end();
            QVERIFY(shownAfter(10) != before);
        }
        // A window that opens under a resting pointer sends this too, and it rests between pixels.
        const QString before = shownAfter(9);
        const QPointF place = handle->mapToGlobal(QPoint(300, 300)) + QPointF(0.5, 0.5);
        QMouseEvent move(QEvent::MouseMove, place, place, place, Qt::NoButton, {}, {});
        QCoreApplication::sendEvent(this, &move);
        QVERIFY(shownAfter(1) != before);
        press("T");
        const QString last = shownAfter(0);
        QCOMPARE(shownAfter(60), last);
        press("T");
        QVERIFY2(shownAfter(10) != last, "the choice is remembered");
        press("T");
        App::settings().setValue("tour/intervalSeconds"_s, 0);
        press("T");
        const QString first = shownAfter(29);
        QVERIFY2(shownAfter(1) != first, "what was stored is too short");
    }

private:
    void openWindow()
    {
        App::settings().setValue("sound/on"_s, true);
        App::settings().setValue("mainWindow/namesOnTiles"_s, false);
        window.reset(new MainWindow);
        connect(window.data(), &MainWindow::soundEnabled, window.data(), &MainWindow::enableSound);
        auto *list = window->findChild<LayoutListWidget *>();
        list->updateLayouts();
        window->openLayout(list->layouts().first());
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.data()));
        QCOMPARE(shown(), "Gate >a"_s);
    }

    void press(const QString &words)
    {
        for (const QString &word : words.split(' ')) {
            const QString rest = word.mid(1);
            if (word.startsWith('=') && !rest.isEmpty()) {
                window->openCamera(cameraNamed(rest));
            } else if (word.startsWith('>')) {
                window->activateCamera(cameraNamed(rest));
            } else if (word.startsWith('?')) {
                window->findChild<LayoutListWidget *>()->search(rest);
            } else {
                QTest::keySequence(window->windowHandle(), QKeySequence(word));
            }
        }
    }

    QString shown() const
    {
        const auto *panel = window->findChild<ControlPanel *>();
        const API::CameraPtr active = window->findChild<Timeline *>()->activeCamera();
        QString words = window->findChild<InfoPanel *>()->layoutName() + " >" +
                        (active ? active->name() : QString());
        if (window->isFullScreen())
            words += " fullscreen";
        if (window->findChild<Timeline *>()->isVisible())
            words += " records";
        if (!panel->isSoundEnabled())
            words += " mute";
        if (gridOf(*window)->isMaximised())
            words += " alone";
        if (gridOf(*window)->areNamesShown())
            words += " named";
        if (gridOf(*window)->findChild<PlayerNotification *>())
            words += " hint";
        if (panel->findChild<QWidget *>("playButton"_s)->isVisibleTo(window.data()))
            words += " paused";
        return words;
    }

    QScopedPointer<MainWindow> window;
};

QTEST_MAIN(KeysTest)
#include "KeysTest.moc"
