// SPDX-License-Identifier: MIT
// A window that hangs on a wall, on a session bus of the test's own.
#include <QtDBus>

#include "GUI/ControlPanel.h"
#include "GUI/Kiosk.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Timeline.h"
#include "tests/GUI/GridWorld.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/ScriptedChild.h"

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
        const auto *bar = window.findChild<ControlPanel *>();
        QVERIFY(!bar->isVisible());
        addLayout("Yard"_s, "b"_s);
        addLayout("Gate"_s, "a ."_s);
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
        const auto isPointerShown = [] { return !QApplication::overrideCursor(); };
        {
            MainWindow window;
            window.show();
            window.enterKiosk("Gate"_s);
            const auto *bar = window.findChild<ControlPanel *>();
            QVERIFY(isPointerShown() && !bar->isVisible());
            const auto move = [&window] {
                static int x = 0;
                QTest::mouseMove(window.windowHandle(), QPoint(300 + ++x, 300));
            };
            move();
            QVERIFY(isPointerShown() && bar->isVisible());
            QMenu menu(&window);
            menu.popup(QPoint(9, 9));
            QVERIFY(expireTimer(*window.findChild<Kiosk *>(), 3s));
            QVERIFY(isPointerShown() && bar->isVisible());
            menu.close();
            QVERIFY(expireTimer(*window.findChild<Kiosk *>(), 3s));
            QVERIFY(!isPointerShown() && !bar->isVisible());
            move();
            QVERIFY(isPointerShown() && bar->isVisible());
            window.showArchivePanels();
            QVERIFY(expireTimer(*window.findChild<Kiosk *>(), 3s));
            QVERIFY(!isPointerShown() && bar->isVisible());
            window.hideArchivePanels();
            QTest::keyClick(&window, Qt::Key_Escape);
            QVERIFY(!window.isFullScreen());
            QVERIFY(isPointerShown() && bar->isVisible());
            expireTimer(*window.findChild<Kiosk *>(), 3s);
            QVERIFY(isPointerShown() && bar->isVisible());
            QTest::keyClick(&window, Qt::Key_F11);
            QVERIFY(expireTimer(*window.findChild<Kiosk *>(), 3s));
            QVERIFY(!isPointerShown() && !bar->isVisible());
        }
        QVERIFY(isPointerShown());
    }

    void theScreenStaysOnWhileVideoPlays()
    {
        addLayout("Gate"_s, "a ."_s);
        saver.calls.clear();
        const QString inhibit = "inhibit Zorvane Client, Video is playing; "_s;
        {
            MainWindow window;
            window.show();
            window.findChild<LayoutListWidget *>()->updateLayouts();
            window.enterKiosk("Gate"_s);
            QCOMPARE(cellsOf(*gridOf(window)), "a ."_s);
            QTRY_VERIFY(gridOf(window)->isPlaying());
            const auto look = [&window] { return expireTimer(*window.findChild<Kiosk *>(), 5s); };
            QVERIFY(look());
            QTRY_COMPARE(saver.calls, inhibit);
            settle();
            QVERIFY(look());
            gridOf(window)->stop();
            QVERIFY(look());
            const QString once = inhibit + "free 7; ";
            QTRY_COMPARE(saver.calls, once);
            // It ends before the answer is in.
            gridOf(window)->playLive();
            QTRY_VERIFY(gridOf(window)->isPlaying());
            QVERIFY(look());
            gridOf(window)->stop();
            QVERIFY(look());
            QTRY_COMPARE(saver.calls, once.repeated(2));
            gridOf(window)->playLive();
            QTRY_VERIFY(gridOf(window)->isPlaying());
            QVERIFY(look());
            settle();
        }
        QTRY_COMPARE(saver.calls, (inhibit + "free 7; ").repeated(3));
    }

private:
    static void addLayout(const QString &name, const QString &cells)
    {
        const API::LayoutPtr layout = layoutOf(cells);
        layout->setName(name);
        API::CloudAPIClient().addLayout(layout);
    }

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
