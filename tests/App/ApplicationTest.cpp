// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <sys/stat.h>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "App/Application.h"
#include "App/FreedMemory.h"
#include "App/Language.h"
#include "App/RaisePipe.h"
#include "App/ScreenChoice.h"
#include "App/ServiceProfile.h"
#include "App/Settings.h"
#include "GUI/CalendarPopup.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/Roster.h"

using App::Application;
using GUI::MainWindow;

namespace {

Application *application()
{
    return qobject_cast<Application *>(qApp);
}

template <typename T>
QList<T *> visibleTopLevels()
{
    QList<T *> found;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        auto *match = qobject_cast<T *>(widget);
        if (match && match->isVisible())
            found.append(match);
    }
    return found;
}

int widgetsLeft()
{
    const QWidgetList widgets = QApplication::allWidgets();
    return int(std::count_if(widgets.begin(), widgets.end(), [](const QWidget *widget) {
        return qobject_cast<const MainWindow *>(widget) ||
               qobject_cast<const GUI::Player::VideoWidget *>(widget);
    }));
}

API::CameraPtr camera(int number)
{
    return rosterCamera("s"_s, number);
}

API::LayoutPtr twoCameras()
{
    auto layout = API::LayoutPtr::create();
    layout->resize(1, 3);
    layout->setCamera(camera(1), 0, 0, 1, 1);
    layout->setCamera(camera(2), 0, 1, 1, 1);
    return layout;
}

} // namespace

/// The real application object and its real windows.
class ApplicationTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // So that the end comes from the list of windows alone.
        QApplication::setQuitOnLastWindowClosed(false);
        App::ServiceProfile profile;
        profile.apiHost = profile.streamingHost = "127.0.0.1"_s;
        profile.apiPort = profile.streamingPort = MisbehavingServer::deadPort();
        App::ServiceProfile::setCurrent(profile);
    }

    void init()
    {
        addServerToRoster("s"_s, {"a", "b", "c"});
        App::settings().setValue("mainWindow/geometry"_s, QByteArray());
    }

    void cleanup()
    {
        const QList<MainWindow *> windows = visibleTopLevels<MainWindow>();
        if (!windows.isEmpty())
            emit windows.first()->signout();
        const QList<GUI::LoginDialog *> dialogs = visibleTopLevels<GUI::LoginDialog>();
        for (GUI::LoginDialog *dialog : dialogs)
            dialog->close();
        QTRY_COMPARE(widgetsLeft(), 0);
    }

    void languageOfTheSettingWins()
    {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Kazakhstan));
        const QString ofTheSystem = application()->language();
        QLocale::setDefault(QLocale(QLocale::German));
        App::settings().setValue("common/language"_s, "ru_RU"_s);
        const QString chosen = application()->language();
        App::settings().setValue("common/language"_s, QVariant());
        QLocale::setDefault(before);
        QCOMPARE(ofTheSystem, "ru"_s);
        QCOMPARE(chosen, "ru_RU"_s);
    }

    void monthsHaveNamesInTheLanguage()
    {
        // The week begins as in the user's country.
        QCOMPARE(App::localeFor("ru"_s, QLocale("de_AT"_s)), QLocale("ru_RU"_s));
        QCOMPARE(App::localeFor("en"_s, QLocale("de_AT"_s)), QLocale("en_AT"_s));
        QCOMPARE(App::localeFor("en"_s, QLocale::c()), QLocale::c());
        application()->translate("ru"_s);
        const auto *day = openWindow()->findChild<QDateEdit *>("dateEdit"_s);
        const QString month = QLocale("ru"_s).monthName(day->date().month(), QLocale::ShortFormat);
        application()->translate("en"_s);
        App::settings().setValue("common/language"_s, QVariant());
        QVERIFY2(day->text().startsWith(month), qPrintable(day->text()));
    }

    /// As in the user's country, also where the texts are English.
    void theWeekBegins()
    {
        const QLocale before;
        QLocale::setDefault(QLocale("en_US"_s));
        const GUI::CalendarPopup popup;
        QLocale::setDefault(before);
        QCOMPARE(QLocale("en_US"_s).firstDayOfWeek(), Qt::Sunday);
        QCOMPARE(popup.firstDayOfWeek(), QLocale::system().firstDayOfWeek());
    }

    void firstWindowTakesTheStoredGeometry()
    {
        MainWindow *window = openWindow();
        QCOMPARE(window->size(), QSize(1100, 650));
        window->setGeometry(40, 50, 960, 540);
        // The first to close is not the end.
        MainWindow *other = openWindow();
        bool wentOn = false;
        connect(other, &QObject::destroyed, window, [&wentOn, window] {
            QTimer::singleShot(0, window, [&wentOn, window] {
                wentOn = true;
                window->close();
            });
        });
        QTimer::singleShot(0, other, [other] { other->close(); });
        QCOMPARE(Application::exec(), 0);
        QVERIFY(wentOn);
        window = openWindow();
        QCOMPARE(window->geometry(), QRect(40, 50, 960, 540));
        // Only the first: a window that no other window asked for has the size of its own.
        QCOMPARE(openWindow()->size(), QSize(1100, 650));
    }

    void furtherWindowStandsBesideTheFirst()
    {
        MainWindow *window = openWindow();
        window->setGeometry(40, 50, 960, 540);
        emit window->clone();
        QCOMPARE(visibleTopLevels<MainWindow>().size(), 2);
        for (const MainWindow *other : visibleTopLevels<MainWindow>())
            QCOMPARE(other->geometry(),
                     QRect(other == window ? 40 : 70, other == window ? 50 : 80, 960, 540));
        // Of one that fills its screen nothing goes beyond it.
        window->showMaximized();
        QTRY_VERIFY(window->x() < 10);
        const QList<MainWindow *> before = visibleTopLevels<MainWindow>();
        const QPoint corner = window->geometry().topLeft() + QPoint(30, 30);
        emit window->clone();
        for (MainWindow *next : visibleTopLevels<MainWindow>()) {
            const QRect place = next->geometry();
            QVERIFY(before.contains(next) || place.topLeft() == corner);
            QVERIFY(before.contains(next) ||
                    place.bottom() == window->screen()->geometry().bottom());
        }
    }

    void aCameraThatCameBackIsOneCamera()
    {
        MainWindow *window = openWindow();
        window->openLayout(twoCameras());
        const API::CameraPtr former = camera(1);
        setWorld({});
        addServerToRoster("later"_s, {});
        QVERIFY(camera(1) && camera(1) != former);
        MainWindow *other = openWindow();
        QSignalSpy told(window, &MainWindow::cameraActivated);
        other->openLayout(twoCameras());
        other->activateCamera(camera(2));
        QCOMPARE(told.count(), 1); // of the second camera; without end, it would be of the first
    }

    void furtherWindowTakesTheFreeScreen()
    {
        const QRect left(0, 0, 1920, 1080);
        const QRect right(1920, 0, 1280, 1024);
        const QRect above(0, -1080, 1920, 1080);
        const QRect mostlyRight(1600, 100, 1100, 650); // its corner is on the left
        QCOMPARE(App::freeScreen({}, {left}), App::noScreen);
        QCOMPARE(App::freeScreen({}, {left, right}), 0);
        QCOMPARE(App::freeScreen({mostlyRight}, {left, right}), 0);
        QCOMPARE(App::freeScreen({mostlyRight, left, left}, {left, right}), App::noScreen);
        QCOMPARE(App::freeScreen({left.translated(9000, 0), mostlyRight}, {left, right}), 0);
        QCOMPARE(App::freeScreen({mostlyRight, left}, {left, right, above}), 2);
        // Of two equal halves the first counts.
        QCOMPARE(App::freeScreen({left.translated(0, -540)}, {left, right, above}), 1);
    }

    void fontsVersionAndMenuEntryAreTheirs()
    {
        const QString entry = QGuiApplication::desktopFileName() + ".desktop"_s;
        QVERIFY(QFile::exists(ZORVANE_SOURCE_DIR "/packaging/" + entry));
        const QStringList files = QDir(":/login/fonts"_s).entryList();
        QVERIFY(!files.isEmpty());
        for (int font = 0; font < files.size(); ++font)
            QCOMPARE(QFontDatabase::applicationFontFamilies(font).size(), 1);
        QCOMPARE(QCoreApplication::applicationVersion(), QLatin1String(ZORVANE_VERSION));
    }

    void signOutClosesAllWindows()
    {
        App::Settings &settings = App::settings();
        for (const char *key : {"auth/email", "auth/password", "auth/saveAuth"})
            settings.setValue(QLatin1String(key), "a@b.example"_s);
        MainWindow *window = openWindow();
        emit window->openInNewWindow(twoCameras());
        emit window->openInNewWindow(camera(3));
        QCOMPARE(application()->playerCount(), 3);
        QCOMPARE(application()->cellCount(), 5);
        emit window->signout();
        QTRY_COMPARE(widgetsLeft(), 0);
        QCOMPARE(settings.value("auth/email"_s).toString(), "a@b.example"_s);
        QCOMPARE(settings.value("auth/password"_s).toString(), QString());
        QCOMPARE(settings.value("auth/saveAuth"_s).toString(), QString());
        QVERIFY(API::CloudAPIClient::serverList().isEmpty());
        QCOMPARE(visibleTopLevels<GUI::LoginDialog>().size(), 1);
        auto *dialog = visibleTopLevels<GUI::LoginDialog>().first();
        QCOMPARE(dialog->findChild<QLineEdit *>("emailLn"_s)->text(), "a@b.example"_s);
        QCOMPARE(dialog->findChild<QLineEdit *>("passwordLn"_s)->text(), QString());
    }

    void onTheWallFromTheEnvironment()
    {
        qputenv("ZORVANE_KIOSK", "Gate");
        application()->startLogin();
        application()->loginSuccessful();
        qunsetenv("ZORVANE_KIOSK");
        QVERIFY(visibleTopLevels<MainWindow>().value(0)->isFullScreen());
    }

    void secondStartGetsTheWindowsOfTheFirst()
    {
        application()->startLogin();
        auto *dialog = visibleTopLevels<GUI::LoginDialog>().value(0);
        MainWindow *behind = openWindow();
        MainWindow *window = openWindow();
        for (QWidget *each : {static_cast<QWidget *>(dialog), static_cast<QWidget *>(behind)})
            each->showMinimized();
        askForTheWindows();
        QTRY_VERIFY(!behind->isMinimized() && !dialog->isMinimized());
        QTRY_VERIFY(window->isActiveWindow());
        behind->activateWindow();
        QMessageBox question(behind);
        question.setModal(true);
        question.showMinimized();
        askForTheWindows();
        QTRY_VERIFY(!question.isMinimized() && question.isActiveWindow());
    }

    void onlyAPipeIsListenedTo()
    {
        QFile("file"_s).open(QIODevice::WriteOnly);
        for (const QString &name : {"file"_s, "nothing"_s}) {
            LogCapture log;
            const App::RaisePipe pipe(name);
            QCOMPARE(log.linesOf("Second starts cannot ask"_s).size(), 1);
        }
    }

    void signOutEndsAQuestion()
    {
        MainWindow *other = openWindow();
        const QPointer<MainWindow> asking = openWindow();
        asking->openLayout(twoCameras());
        asking->addToLayout(camera(3));
        bool wasAsking = false;
        QTimer::singleShot(0, asking, [&] {
            wasAsking = QApplication::activeModalWidget() != nullptr;
            emit other->signout();
        });
        asking->openCamera(camera(3));
        QVERIFY(wasAsking);
        QTRY_VERIFY(!asking);
        QCOMPARE(visibleTopLevels<GUI::LoginDialog>().size(), 1);
    }

    /// What lies between what stays: the C library would keep it.
    void givesFreedMemoryBack()
    {
#if !defined(__GLIBC__) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        QSKIP("Memory is another library's here");
#endif
        const auto timers = qApp->findChildren<QTimer *>();
        const auto timer = std::find_if(timers.begin(), timers.end(), [](const QTimer *one) {
            return one->intervalAsDuration() == App::freedMemoryPeriod;
        });
        QVERIFY(timer != timers.end() && (*timer)->isActive());
        constexpr int count = 2048;
        std::vector<QByteArray> blocks;
        for (int i = 0; i < count; ++i)
            blocks.emplace_back(32'000, 'x');
        const QByteArray last = blocks.back();
        blocks.clear();
        const qint64 freedKiB = ownKiB();
        (*timer)->start(0);
        QTRY_VERIFY(ownKiB() < freedKiB - 40'000);
        (*timer)->start(App::freedMemoryPeriod);
    }

private:
    static qint64 ownKiB()
    {
        QFile file("/proc/self/status"_s);
        const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        return text.mid(text.indexOf("RssAnon:") + 8).trimmed().split(' ').first().toLongLong();
    }

    static void askForTheWindows()
    {
        QFile pipe("raise"_s);
        QVERIFY(pipe.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        pipe.write("x");
    }

    MainWindow *openWindow()
    {
        const QList<MainWindow *> before = visibleTopLevels<MainWindow>();
        application()->createMainWindow();
        const QList<MainWindow *> windows = visibleTopLevels<MainWindow>();
        for (MainWindow *window : windows) {
            if (!before.contains(window))
                return window;
        }
        return nullptr;
    }
};

int main(int argc, char **argv)
{
    mkfifo("raise", S_IRUSR | S_IWUSR);
    qputenv("ZORVANE_RAISE", "raise");
    Application application(argc, argv);
    application.setStyleSheet(Application::globalStyleSheet());
    ApplicationTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ApplicationTest.moc"
