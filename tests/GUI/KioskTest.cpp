// SPDX-License-Identifier: MIT
// A window that hangs on a wall, on a session bus of the test's own, and what it says when the
// service falls silent.
#include <QtDBus>

#include "API/RestClient.h"
#include "API/ServiceLink.h"
#include "GUI/ControlPanel.h"
#include "GUI/Kiosk.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Timeline.h"
#include "tests/GUI/GridWorld.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/ScriptedChild.h"
#include "tests/support/ScriptedService.h"

using namespace ZorvaneClient::GUI;
using namespace std::chrono_literals;

/// What a desktop puts on the bus.
class Saver : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")

public:
    QString calls;

public slots:
    Q_SCRIPTABLE uint Inhibit(const QString &program, const QString &reason)
    {
        calls += "inhibit %1, %2; "_s.arg(program, reason);
        return 7;
    }
    Q_SCRIPTABLE void UnInhibit(uint cookie) { calls += "free %1; "_s.arg(cookie); }
};

class KioskTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        daemon.start("dbus-daemon"_s, {"--session", "--nofork", "--print-address"});
        while (!daemon.canReadLine())
            QVERIFY(daemon.waitForReadyRead());
        const QString address = QString::fromLatin1(daemon.readLine()).trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address.toLatin1());
        QDBusConnection desktop = QDBusConnection::connectToBus(address, "desktop"_s);
        QVERIFY(desktop.registerObject("/org/freedesktop/ScreenSaver"_s, &saver,
                                       QDBusConnection::ExportScriptableSlots));
        QVERIFY(desktop.registerService("org.freedesktop.ScreenSaver"_s));

        qRegisterMetaType<API::CameraPtr>("API::CameraPtr");
        qRegisterMetaType<API::LayoutPtr>("API::LayoutPtr");
        QCoreApplication::setApplicationName("Zorvane Client"_s);
        useServiceAt(MisbehavingServer::deadPort());
        addServerToRoster("s"_s, {"a", "b"}, true);
        child.reset(new ScriptedChild({"print frame\\n", "wait never"}));
    }

    void cleanupTestCase()
    {
        QDBusConnection::disconnectFromBus("desktop"_s);
        daemon.terminate();
        QVERIFY(daemon.waitForFinished());
    }

    void theLayoutFillsTheScreen()
    {
        MainWindow window;
        window.show();
        window.enterKiosk("Gate"_s);
        QVERIFY(window.isFullScreen());
        for (const QString &words : {"b"_s, "a ."_s}) {
            const API::LayoutPtr layout = layoutOf(words);
            layout->setName(words == "b"_s ? "Yard"_s : "Gate"_s);
            API::CloudAPIClient().addLayout(layout);
        }
        auto *list = window.findChild<LayoutListWidget *>();
        QCOMPARE(cellsOf(*gridOf(window)), "."_s);
        list->updateLayouts();
        QCOMPARE(cellsOf(*gridOf(window)), "a ."_s);
        window.openLayout(layoutOf("b"_s));
        list->updateLayouts();
        QCOMPARE(cellsOf(*gridOf(window)), "b"_s); // it is opened once
    }

    void barAndPointerComeAndGo()
    {
        QScopedPointer<MainWindow> window(new MainWindow);
        window->show();
        window->enterKiosk("Gate"_s);
        const auto shown = [&window] {
            return QString(QApplication::overrideCursor() ? "" : "pointer ") +
                   (window->findChild<ControlPanel *>()->isVisible() ? "bar" : "");
        };
        QCOMPARE(shown(), "pointer "_s);
        int x = 300;
        const auto after = [&](const QString &word) {
            if (word == "move"_s)
                QTest::mouseMove(window->windowHandle(), QPoint(++x, 300));
            else if (word == "rest"_s)
                expireTimers(3s, window->findChild<Kiosk *>());
            else
                QTest::keySequence(window.data(), QKeySequence(word));
            return shown();
        };
        QCOMPARE(after("move"_s), "pointer bar"_s);
        QMenu menu;
        menu.popup(QPoint(9, 9));
        QCOMPARE(after("rest"_s), "pointer bar"_s);
        menu.close();
        QCOMPARE(after("rest"_s), QString());
        QCOMPARE(after("move"_s), "pointer bar"_s);
        window->showArchivePanels();
        QCOMPARE(after("rest"_s), "bar"_s);
        window->hideArchivePanels();
        QCOMPARE(after("Esc"_s), "pointer bar"_s);
        QCOMPARE(after("rest"_s), "pointer bar"_s);
        after("F11"_s);
        QCOMPARE(after("rest"_s), QString());
        window.reset();
        QVERIFY(!QApplication::overrideCursor());
    }

    void theScreenStaysOnWhileVideoPlays()
    {
        QScopedPointer<MainWindow> window(new MainWindow);
        window->show();
        window->enterKiosk(QString());
        window->openLayout(layoutOf("a"_s));
        saver.calls.clear();
        const auto look = [&window] { expireTimers(5s, window->findChild<Kiosk *>()); };
        const auto play = [&] {
            gridOf(*window)->playLive();
            QTRY_VERIFY(gridOf(*window)->isPlaying());
            look();
        };
        const auto stop = [&] {
            gridOf(*window)->stop();
            look();
        };
        const QString once = "inhibit Zorvane Client, Video is playing; free 7; "_s;
        play();
        QTRY_COMPARE(saver.calls + "free 7; ", once);
        settle();
        look();
        stop();
        QTRY_COMPARE(saver.calls, once);
        play();
        stop(); // before the answer is in
        QTRY_COMPARE(saver.calls, once.repeated(2));
        play();
        QTRY_COMPARE(saver.calls + "free 7; ", once.repeated(3));
        settle();
        window.reset();
        QTRY_COMPARE(saver.calls, once.repeated(3));
        // One that goes before the answer is in gives it back as well.
        window.reset(new MainWindow);
        window->enterKiosk(QString());
        window->openLayout(layoutOf("a"_s));
        play();
        window.reset();
        QTRY_COMPARE(saver.calls, once.repeated(4));
    }

    void theSignOfASilentService()
    {
        ScriptedService service;
        const auto restore = qScopeGuard([] {
            useServiceAt(MisbehavingServer::deadPort());
            App::Environment::setClock({});
        });
        MainWindow window;
        window.show();
        const auto *sign = window.findChild<QLabel *>("serviceSign"_s);
        const auto *tab = window.findChild<QPushButton *>("layoutsButton"_s);
        const QRect tabPlace = tab->geometry();
        // Without waiting for the next look at the roster.
        const auto ask = [](int second) {
            App::Environment::setClock(
                [second] { return QDateTime(QDate(2026, 3, 5), QTime(7, 8, second)); });
            API::CloudAPIClient client;
            QSignalSpy failed(&client, &API::CloudAPIClient::updatesError);
            client.checkForUpdates();
            QTRY_COMPARE(failed.count(), 1);
        };
        QVERIFY(service.start());
        const App::ServiceProfile atService = App::ServiceProfile::current();
        ask(0); // it says no, but answers
        QVERIFY(!sign->isVisible() && sign->toolTip().isEmpty());
        useServiceAt(MisbehavingServer::deadPort());
        ask(10);
        ask(20);
        QTRY_VERIFY(sign->isVisible());
        QVERIFY(sign->toolTip().contains("05/03 07:08:10"_s));
        QCOMPARE(tab->geometry(), tabPlace);
        QCOMPARE(sign->height(), tab->height());
        QVERIFY(!sign->pixmap(Qt::ReturnByValue).isNull());
        QCOMPARE(sign->accessibleName(), "No connection to the service"_s);
        App::ServiceProfile::setCurrent(atService);
        ask(30);
        QVERIFY(!sign->isVisible() && sign->toolTip().isEmpty());
        // One that never comes, and all the time comes back.
        service.server().setHandler([](const WireRequest &) { return WireReply::silence(); });
        API::RestClient client;
        client.request("anything"_s, {});
        QVERIFY(!sign->isVisible());
        QCOMPARE(expireTimers(20s, &API::ServiceLink::instance()), 1);
        QVERIFY(sign->isVisible() && sign->toolTip().contains("05/03 07:08:30"_s));
        API::ServiceLink::instance().setAnswered(true);
        // Something else answers in its place.
        service.server().setHandler([](const WireRequest &) { return WireReply::json("{}"); });
        ask(40);
        QVERIFY(sign->isVisible());
    }

private:
    /// What was asked over the bus before has its answer.
    static void settle()
    {
        const QDBusConnection bus = QDBusConnection::sessionBus();
        QDBusPendingCallWatcher watcher(bus.asyncCall(QDBusMessage::createMethodCall(
            "org.freedesktop.ScreenSaver"_s, "/"_s, "org.freedesktop.DBus.Peer"_s, "Ping"_s)));
        QSignalSpy answered(&watcher, &QDBusPendingCallWatcher::finished);
        QTRY_COMPARE(answered.count(), 1);
    }

    QProcess daemon;
    Saver saver;
    QScopedPointer<ScriptedChild> child;
};

QTEST_MAIN(KioskTest)
#include "KioskTest.moc"
