// SPDX-License-Identifier: MIT
// What keys do in a window with three saved layouts, of which the first is open.
#include "API/LayoutDocument.h"
#include "App/Settings.h"
#include "GUI/ControlPanel.h"
#include "GUI/GridRules.h"
#include "GUI/InfoPanel.h"
#include "GUI/KeyCard.h"
#include "GUI/KeyMap.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/PlayerNotification.h"
#include "GUI/RosterWidget.h"
#include "GUI/SideBar.h"
#include "GUI/Timeline.h"
#include "GUI/Tour.h"
#include "GUI/TourButton.h"
#include "tests/GUI/GridWorld.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/MisbehavingServer.h"

using namespace ZorvaneClient::GUI;
using namespace std::chrono_literals;
using Editor = std::function<QWidget *(QWidget *)>;
Q_DECLARE_METATYPE(Editor)

namespace {

template <typename Field>
QWidget *newField(QWidget *window)
{
    return new Field(window);
}

QWidget *newEditableBox(QWidget *window)
{
    auto *box = new QComboBox(window);
    box->setEditable(true);
    return box;
}

} // namespace

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
        const QMap<QString, QString> grids{{"Yard", "e f"}, {"Gate", "a b | c ."}, {"Night", "d"}};
        for (auto grid = grids.cbegin(); grid != grids.cend(); ++grid) {
            const API::LayoutPtr layout = layoutOf(grid.value());
            layout->setName(grid.key());
            API::CloudAPIClient().addLayout(layout);
        }
    }

    void init()
    {
        App::settings().setValue("sound/on"_s, true);
        window.reset(new MainWindow);
        connect(window.data(), &MainWindow::soundEnabled, window.data(), &MainWindow::enableSound);
        auto *list = window->findChild<LayoutListWidget *>();
        list->updateLayouts();
        window->openLayout(list->layouts().first());
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.data()));
        QCOMPARE(shown(), "a b | c . >a"_s);
    }

    void cleanup() { window.reset(); }

    void keys_data()
    {
        const QString first = "a b | c . >a"_s;
        rows<QString, QString>({"keys", "shown"},
                               {{"pause", "Space", first + " paused"},
                                {"play", "Space Space", first},
                                {"whole screen", "F", first + " fullscreen"},
                                {"and back", "F11 F11", first},
                                {"Escape", "F Esc", first},
                                {"records", "R", first + " records"},
                                {"no records", "R R", first},
                                {"live", "R L", first},
                                {"already live", "Space L", first + " paused"},
                                {"snapshot", "S", first + " hint"},
                                {"mute", "M", first + " mute"},
                                {"and not", "M M", first},
                                {"no seeking live", "Right Shift+Left Plus =", first},
                                {"first layout", "Ctrl+3 Ctrl+1", first},
                                {"last layout", "Ctrl+3", "e f >e"},
                                {"no such layout", "Ctrl+4", first},
                                {"next", "PgDown", "d >d"},
                                {"next but one", "PgDown PgDown", "e f >e"},
                                {"next round the end", "PgDown PgDown PgDown", first},
                                {"previous", "PgUp", "e f >e"},
                                {"tile to the right", "Ctrl+Right", "a b | c . >b"},
                                {"none further", "Ctrl+Right Ctrl+Right", "a b | c . >b"},
                                {"tile below", "Ctrl+Down", "a b | c . >c"},
                                {"and back up", "Ctrl+Down Ctrl+Up", first},
                                {"round the corner", "Ctrl+Right Ctrl+Left", first}});
    }

    void keys()
    {
        const auto [keys, expected] = row<QString, QString>();
        press(keys);
        QTRY_COMPARE(shown(), expected);
    }

    void layoutsFromACameraOfItsOwn()
    {
        for (const auto &[key, expected] :
             {std::pair{"PgDown", "a b | c . >a"}, {"PgUp", "e f >e"}}) {
            window->openCamera(cameraNamed("b"_s));
            QCOMPARE(shown(), "b >b"_s);
            press(key);
            QCOMPARE(shown(), QString(expected));
        }
        // A search hides cards, but takes nothing out of the order.
        window->findChild<LayoutListWidget *>()->search("Yard"_s);
        press("Ctrl+2");
        QCOMPARE(shown(), "d >d"_s);
        // A camera that is not of this window leaves no tile active.
        window->activateCamera(cameraNamed("f"_s));
        press("Ctrl+Up");
        QCOMPARE(shown(), "d >d"_s);
    }

    void pressedKeys_data()
    {
        const int none = Qt::NoModifier;
        const int control = Qt::ControlModifier;
        rows<int, int, int>(
            {"key", "modifiers", "action"},
            {{"letter", Qt::Key_S, none, int(KeyAction::Snapshot)},
             {"the same key in the Russian layout", 0x042b, none, int(KeyAction::Snapshot)},
             {"with Ctrl", 0x0410, control, int(KeyAction::Search)},
             {"number pad", Qt::Key_Plus, Qt::KeypadModifier, int(KeyAction::Speed)},
             {"shifted plus", Qt::Key_Plus, Qt::ShiftModifier, int(KeyAction::Speed)},
             {"plus without Shift", Qt::Key_Equal, none, int(KeyAction::Speed)},
             {"digit alone", Qt::Key_1, none, -1},
             {"too many modifiers", Qt::Key_F, control | Qt::ShiftModifier, -1},
             {"of the desktop", Qt::Key_F11, Qt::AltModifier, -1},
             {"of the window manager", Qt::Key_Left, Qt::MetaModifier, -1},
             {"no letter", Qt::Key_Shift, none, -1}});
    }

    void pressedKeys()
    {
        const auto [key, modifiers, action] = row<int, int, int>();
        const KeyRow *found = keyRow(key, Qt::KeyboardModifiers(modifiers));
        QCOMPARE(found ? int(found->action) : -1, action);
    }

    void noKeyWhileTyping_data()
    {
        rows<Editor>({"field"}, {{"text", newField<QLineEdit>},
                                 {"number", newField<QSpinBox>},
                                 {"date", newField<QDateEdit>},
                                 {"editable choice", newEditableBox},
                                 {"long text", newField<QTextEdit>}});
    }

    void noKeyWhileTyping()
    {
        QFETCH(Editor, field);
        QWidget *typed = field(window.data());
        typed->show();
        typed->setFocus();
        const QString before = shown();
        press("R F11 PgDown Ctrl+2 M Ctrl+Right F1");
        QCOMPARE(shown(), before);
        // A click elsewhere ends the typing, and so does Escape.
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          gridOf(*window)->mapTo(window.data(), QPoint(20, 20)));
        press("R");
        QCOMPARE(shown(), before + " records");
        typed->setFocus();
        press("Esc R");
        QCOMPARE(shown(), before);
    }

    void whatHasTheFocusComesFirst()
    {
        auto *button = new QPushButton(window.data());
        button->show();
        button->setFocus();
        QSignalSpy clicked(button, &QPushButton::clicked);
        press("Space R");
        QCOMPARE(clicked.count(), 1);
        QCOMPARE(shown(), "a b | c . >a records"_s);
        // It would scroll otherwise.
        const QList<QScrollArea *> pages = window->findChildren<QScrollArea *>();
        for (QScrollArea *page : pages) {
            page->setFocus();
            press("PgDown");
        }
        QCOMPARE(pages.size(), 2);
        QCOMPARE(shown(), "e f >e"_s);
    }

    void heldKeysActOnce()
    {
        QKeyEvent held(QEvent::KeyPress, Qt::Key_R, Qt::NoModifier, "r"_s, true);
        QCoreApplication::sendEvent(window.data(), &held);
        QVERIFY(held.isAccepted());
        QCOMPARE(shown(), "a b | c . >a"_s);
    }

    void menusAndQuestionsKeepTheirKeys()
    {
        QMenu menu(window.data());
        menu.addAction("Open"_s);
        menu.popup(window->mapToGlobal(QPoint(5, 5)));
        press("R");
        menu.close();
        QMessageBox box(window.data());
        box.open();
        press("R");
        QTest::keyClick(window.data(), Qt::Key_R);
        box.close();
        QCOMPARE(shown(), "a b | c . >a"_s);
    }

    void search_data()
    {
        rows<QString>({"before"}, {{"roster", "rosterButton"},
                                   {"layouts", "layoutsButton"},
                                   {"settings", "settingsButton"},
                                   {"side bar away", "hideRosterButton"}});
    }

    void search()
    {
        QFETCH(QString, before);
        window->findChild<QPushButton *>(before)->click();
        auto *field = window->findChild<QLineEdit *>("searchEdit"_s);
        field->setText("gate"_s);
        press("Ctrl+F M");
        QVERIFY(field->isVisible() && field->hasFocus());
        QCOMPARE(field->text(), "m"_s);
        QCOMPARE(window->findChild<LayoutListWidget *>()->isVisible(), before == "layoutsButton"_s);
        QCOMPARE(shown(), "a b | c . >a"_s);
    }

    void theCardListsAllKeys()
    {
        press("F");
        for (const char *closing : {"F1", "Esc", "click"}) {
            press("F1");
            const QPointer<KeyCard> card = window->findChild<KeyCard *>();
            QVERIFY(card && card->isVisible());
            QCOMPARE(QApplication::activePopupWidget(), card);
            QStringList texts;
            const QList<QLabel *> labels = card->findChildren<QLabel *>();
            for (const QLabel *label : labels) {
                texts << label->text();
                QVERIFY(card->rect().contains(label->geometry()));
                QVERIFY(label->sizeHint().width() <= label->width());
            }
            for (const KeyRow &row : keyMap())
                QVERIFY(!row.text || texts.contains(KeyCard::tr(row.text)));
            for (const char *keys : {"F F11", "Shift+← →", "Ctrl+← → ↑ ↓", "Ctrl+1 … 9", "+ -"})
                QVERIFY2(texts.contains(QString::fromUtf8(keys)), keys);
            press("R");
            QVERIFY(card->isVisible());
            if (closing == "click"_s)
                QTest::mouseClick(labels.last(), Qt::LeftButton);
            else
                press(closing);
            QTRY_VERIFY(!card);
            QCOMPARE(shown(), "a b | c . >a fullscreen"_s);
        }
    }

    void neighbours_data()
    {
        rows<QString, QString, QString>({"grid", "moves", "way"},
                                        {{"round a square", "ab cd", "RDLU", "abdca"},
                                         {"against an edge", "ab cd", "LU", "aaa"},
                                         {"over a gap", "a.b ...", "RL", "aba"},
                                         {"past a corner", "a. .b", "RL", "aba"},
                                         {"beside before nearer", "a..b .c..", "R", "ab"},
                                         {"from a large one", "aab aac aad", "R", "ac"},
                                         {"into a large one", "abb cbb", "RLDR", "abacb"},
                                         {"up and down again", "aa bc", "DUR", "abaa"},
                                         {"nearer of two shifted", "a... ..b. ...c", "R", "ab"}});
    }

    void neighbours()
    {
        const auto [grid, moves, way] = row<QString, QString, QString>();
        QMap<QChar, QRect> areas;
        const QStringList lines = grid.split(' ');
        for (int y = 0; y < lines.size(); ++y) {
            for (int x = 0; x < lines.at(y).size(); ++x)
                areas[lines.at(y).at(x)] |= QRect(x, y, 1, 1);
        }
        areas.remove('.');
        QChar at = 'a';
        QString walked = at;
        for (const QChar move : moves) {
            const auto side = Direction(int("LRUD"_s.indexOf(move)));
            const int next = neighbour(areas.values().toVector(), areas.value(at), side);
            at = next < 0 ? at : areas.keys().at(next);
            walked += at;
        }
        QCOMPARE(walked, way);
    }

    /// Words: "on" with an interval of 30 s, "off", seconds that pass, "hold", and "?", which is
    /// answered by the name of the layout that is opened, or by "-".
    void tours_data()
    {
        rows<QString, QString, QString>(
            {"layouts", "steps", "opened"},
            {{"in turn", "abc", "on +30 ? +30 ? +30 ?", "bca"},
             {"when it is time", "abc", "on +29 ? +1 ?", "-b"},
             {"not by itself", "abc", "+60 ?", "-"},
             {"no more", "abc", "on +30 ? off +30 ?", "b-"},
             {"begun anew", "abc", "on +29 on +29 ? +1 ?", "-b"},
             {"while somebody is there", "abc", "on +29 hold +29 ? +1 ?", "-b"},
             {"missed ones are not made up for", "abc", "on +300 ? ?", "b-"},
             {"a clock set back", "abc", "on -3600 ? +29 ? +1 ?", "--b"},
             {"too fast", "abc", "on1 +4 ? +1 ?", "-b"},
             {"one layout", "a", "on +30 ?", "-"},
             {"from one that is not saved", "bc", "on +30 ?", "b"},
             {"no layouts", "", "on +30 ?", "-"}});
    }

    void tours()
    {
        const auto [names, steps, opened] = row<QString, QString, QString>();
        const auto shownFirst = API::LayoutPtr::create();
        shownFirst->setName("a"_s);
        QList<API::LayoutPtr> layouts;
        for (const QChar name : names) {
            layouts << (name == 'a' ? shownFirst : API::LayoutPtr::create());
            layouts.last()->setName(name);
        }
        Tour tour;
        QDateTime now(QDate(2026, 3, 5), QTime(12, 0));
        API::LayoutPtr at = shownFirst;
        QString answers;
        for (const QString &step : steps.split(' ')) {
            if (step.startsWith("on"_s)) {
                tour.start(now, std::chrono::seconds(step == "on1"_s ? 1 : 30));
            } else if (step == "off"_s) {
                tour.stop();
            } else if (step == "hold"_s) {
                tour.hold(now);
            } else if (step == "?"_s) {
                const API::LayoutPtr next = tour.next(now, layouts, at);
                answers += next ? next->name() : "-"_s;
                at = next ? next : at;
            } else {
                now = now.addSecs(step.toInt());
            }
        }
        QCOMPARE(answers, opened);
    }

    void aTourOfTheWindow()
    {
        FakeClock clock(QDateTime(QDate(2026, 3, 5), QTime(12, 0)));
        App::settings().setValue("tour/intervalSeconds"_s, 30);
        const auto *button = window->findChild<TourButton *>();
        const QList<QAction *> choices = button->findChild<QMenu *>()->actions();
        const auto after = [&](int seconds) {
            clock.advance(seconds);
            expireTimer(*window, 1000ms);
            return shown();
        };
        press("T");
        QCOMPARE(after(29), "a b | c . >a hint"_s);
        QCOMPARE(after(1), "d >d"_s);
        QVERIFY(button->property("isOn").toBool() && choices.at(2)->isChecked());
        // Whoever is there holds it back, and so does what must not be lost.
        const auto isHeldBy = [&](const std::function<void()> &use) {
            const QString before = after(29);
            use();
            const bool isHeld = after(29) == before;
            return after(1) != before && isHeld;
        };
        QWindow *handle = window->windowHandle();
        QVERIFY(isHeldBy([handle] { QTest::keyClick(handle, Qt::Key_Control); }));
        QVERIFY(isHeldBy([handle] { QTest::mouseMove(handle, QPoint(300, 300)); }));
        QVERIFY(isHeldBy([handle] { QTest::mouseClick(handle, Qt::RightButton); }));
        // A window that opens under it sends this too.
        const QPoint resting = window->mapFromGlobal(QCursor::pos());
        QTest::mouseMove(handle, resting);
        QVERIFY(!isHeldBy([&] { QTest::mouseMove(handle, resting); }));
        choices.at(1)->trigger();
        QCOMPARE(App::settings().value("tour/intervalSeconds"_s), QVariant(10));
        window->startLayoutEditor();
        const QString edited = shown();
        QCOMPARE(after(11), edited);
        emit window->findChild<InfoPanel *>()->layoutCancelled();
        QCOMPARE(after(9), edited);
        press("Space");
        QCOMPARE(after(11), edited + " paused");
        press("Space");
        QVERIFY(after(11) != edited);
        choices.at(0)->trigger();
        const QString last = shown();
        QCOMPARE(after(60), last);
        press("T");
        QVERIFY(choices.at(1)->isChecked());
        QVERIFY(after(10) != last);
    }

private:
    /// Words such as "Ctrl+1 R", one after the other, to the window that has the keyboard.
    void press(const QString &words)
    {
        for (const QString &word : words.split(' ')) {
            const bool isPlus = word == "Plus"_s;
            const QKeySequence sequence(isPlus ? "+"_s : word);
            const int code = int(sequence[0]);
            const auto modifiers = Qt::KeyboardModifiers(code & Qt::KeyboardModifierMask);
            QTest::keyClick(window->windowHandle(), Qt::Key(code & ~Qt::KeyboardModifierMask),
                            modifiers);
        }
    }

    QString shown() const
    {
        const auto *panel = window->findChild<ControlPanel *>();
        const API::CameraPtr active = window->findChild<Timeline *>()->activeCamera();
        QString words = cellsOf(*gridOf(*window)) + " >" + (active ? active->name() : QString());
        if (window->isFullScreen())
            words += " fullscreen";
        if (window->findChild<Timeline *>()->isVisible())
            words += " records";
        if (!panel->isSoundEnabled())
            words += " mute";
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
