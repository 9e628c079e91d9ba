// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "App/Application.h"
#include "App/ServiceProfile.h"
#include "App/Settings.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/Roster.h"

using App::Application;
using GUI::MainWindow;

namespace {

constexpr int deadlineMs = 20000;

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
    int count = 0;
    const QWidgetList widgets = QApplication::allWidgets();
    for (const QWidget *widget : widgets) {
        const bool isOfAWindow = qobject_cast<const MainWindow *>(widget) ||
                                 qobject_cast<const GUI::Player::VideoWidget *>(widget);
        count += isOfAWindow ? 1 : 0;
    }
    return count;
}

API::CameraPtr camera(int number)
{
    return rosterCamera("s"_s, number);
}

API::LayoutPtr layoutOf(const QList<API::CameraPtr> &cameras)
{
    const auto layout = API::LayoutPtr::create();
    layout->resize(1, 3);
    int column = 0;
    for (const API::CameraPtr &shown : cameras)
        layout->setCamera(shown, 0, column++, 1, 1);
    return layout;
}

QString setting(const char *key)
{
    return App::settings().value(QLatin1String(key)).toString();
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

    void languageOfTheSettingWins_data()
    {
        const QLocale russian(QLocale::Russian, QLocale::Kazakhstan);
        const QLocale german(QLocale::German);
        rows<QString, QLocale, QString>({"setting", "locale", "language"},
                                        {{"Russian system", QString(), russian, "ru"},
                                         {"Russian chosen", "ru", german, "ru"},
                                         {"as it was given", "ru_RU", german, "ru_RU"}});
    }

    void languageOfTheSettingWins()
    {
        const auto [setting, locale, language] = row<QString, QLocale, QString>();
        const QString key = "common/language"_s;
        App::settings().setValue(key, setting.isNull() ? QVariant() : QVariant(setting));
        const QLocale before;
        QLocale::setDefault(locale);
        const QString found = application()->language();
        QLocale::setDefault(before);
        App::settings().setValue(key, QVariant());
        QCOMPARE(found, language);
    }

    void firstWindowTakesTheStoredGeometry()
    {
        MainWindow *window = openWindow();
        QCOMPARE(window->size(), QSize(1100, 650));
        window->setGeometry(40, 50, 960, 540);
        QTimer::singleShot(0, window, [window] { window->close(); });
        QCOMPARE(Application::exec(), 0);
        QCOMPARE(widgetsLeft(), 0);
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
    }

    void fontsAndVersionAreTheirs()
    {
        const QStringList files = QDir(":/login/fonts"_s).entryList();
        QVERIFY(!files.isEmpty());
        for (int font = 0; font < files.size(); ++font)
            QCOMPARE(QFontDatabase::applicationFontFamilies(font).size(), 1);
        QCOMPARE(QCoreApplication::applicationVersion(), QLatin1String(ZORVANE_VERSION));
    }

    void cameraAndLayoutOpenInWindowsOfTheirOwn()
    {
        MainWindow *window = openWindow();
        QCOMPARE(application()->playerCount(), 0);
        QCOMPARE(application()->cellCount(), 1);
        emit window->openInNewWindow(camera(1));
        QCOMPARE(visibleTopLevels<MainWindow>().size(), 2);
        QCOMPARE(application()->playerCount(), 1);
        QCOMPARE(application()->cellCount(), 2);
        emit window->openInNewWindow(layoutOf({camera(2), camera(3)}));
        QCOMPARE(visibleTopLevels<MainWindow>().size(), 3);
        QCOMPARE(application()->playerCount(), 3);
        QCOMPARE(application()->cellCount(), 5);
        QCOMPARE(window->playerCount(), 0);
    }

    void signOutClosesAllWindows()
    {
        App::settings().setValue("auth/email"_s, "a@b.example"_s);
        App::settings().setValue("auth/password"_s, "secret"_s);
        App::settings().setValue("auth/saveAuth"_s, "a@b.example"_s);
        MainWindow *window = openWindow();
        openWindow()->openLayout(layoutOf({camera(1), camera(2)}));
        openWindow()->openCamera(camera(3));
        QCOMPARE(application()->playerCount(), 3);
        emit window->signout();
        QCOMPARE(application()->playerCount(), 0);
        QCOMPARE(visibleTopLevels<GUI::LoginDialog>().size(), 1);
        QTRY_COMPARE(widgetsLeft(), 0);
        QCOMPARE(setting("auth/email"), "a@b.example"_s);
        QCOMPARE(setting("auth/password"), QString());
        QCOMPARE(setting("auth/saveAuth"), QString());
        QVERIFY(API::CloudAPIClient::serverList().isEmpty());
        auto *dialog = visibleTopLevels<GUI::LoginDialog>().first();
        QCOMPARE(dialog->findChild<QLineEdit *>("emailLn"_s)->text(), "a@b.example"_s);
        QCOMPARE(dialog->findChild<QLineEdit *>("passwordLn"_s)->text(), QString());
    }

    void signOutEndsAQuestion()
    {
        MainWindow *other = openWindow();
        const QPointer<MainWindow> asking = openWindow();
        asking->openLayout(layoutOf({camera(1)}));
        asking->addToLayout(camera(2));
        bool wasAsking = false;
        QTimer::singleShot(0, asking, [&] {
            wasAsking = QApplication::activeModalWidget() != nullptr;
            emit other->signout();
        });
        asking->openCamera(camera(3));
        QVERIFY(wasAsking);
        QTRY_VERIFY(!asking);
        QTRY_COMPARE(widgetsLeft(), 0);
        QCOMPARE(visibleTopLevels<GUI::LoginDialog>().size(), 1);
    }

    void onlyTheLastWindowToCloseQuits()
    {
        MainWindow *first = openWindow();
        MainWindow *second = openWindow();
        bool wentOn = false;
        QTimer::singleShot(0, first, [first] { first->close(); });
        connect(first, &QObject::destroyed, second, [&wentOn, second] {
            QTimer::singleShot(0, second, [&wentOn, second] {
                wentOn = true;
                second->close();
            });
        });
        QTimer::singleShot(deadlineMs, first, [] { QCoreApplication::exit(1); });
        QTimer::singleShot(deadlineMs, second, [] { QCoreApplication::exit(1); });
        QCOMPARE(Application::exec(), 0);
        QVERIFY(wentOn);
        QCOMPARE(widgetsLeft(), 0);
    }

private:
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
    Application application(argc, argv);
    application.setStyleSheet(Application::globalStyleSheet());
    ApplicationTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ApplicationTest.moc"
