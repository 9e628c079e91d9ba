// SPDX-License-Identifier: MIT
#include "App/Application.h"

#include <QDesktopServices>
#include <QDir>
#include <QFontDatabase>
#include <QIcon>
#include <QLocale>
#include <QScreen>
#include <QStandardPaths>
#include <QTimer>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "App/Environment.h"
#include "App/FreedMemory.h"
#include "App/Language.h"
#include "App/Log.h"
#include "App/QtShims.h"
#include "App/RaisePipe.h"
#include "App/ScreenChoice.h"
#include "App/ServiceProfile.h"
#include "App/Settings.h"
#include "App/SettingsKeys.h"
#include "GUI/HouseStyle.h"
#include "GUI/HoverSync.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/FrameFile.h"

namespace ZorvaneClient {
namespace App {

namespace {

void addFonts()
{
    const char *const files[] = {"PTS55F", "PTS56F", "PTS75F", "PTS76F",
                                 "PTC55F", "PTC75F", "PTN57F", "PTN77F"};
    for (const char *file : files)
        QFontDatabase::addApplicationFont(
            QStringLiteral(":/login/fonts/%1.ttf").arg(QLatin1String(file)));
}

void makeFolders()
{
    QDir().mkdir(QStandardPaths::writableLocation(QStandardPaths::CacheLocation));
    QDir().mkdir(QStandardPaths::writableLocation(QStandardPaths::ConfigLocation));
}

} // namespace

// Icons come in two sizes; without these a high-density screen gets the small one.
Application::HighDensity::HighDensity()
{
    useScreenScale<QGuiApplication>();
}

Application::Application(int &argc, char **argv) : Application(HighDensity(), argc, argv)
{
}

Application::Application(HighDensity, int &argc, char **argv) : QApplication(argc, argv)
{
    setApplicationName(QStringLiteral("Zorvane Client"));
    setApplicationVersion(QStringLiteral(ZORVANE_VERSION));
    // By that a desktop under Wayland knows whose icon the windows bear.
    setDesktopFileName(QStringLiteral("zorvane-client"));
    GUI::useHouseStyle(this);
    loadLanguage(language());
    addFonts();
    makeFolders();
    openLog();
    GUI::Player::Internal::FrameFile::removeLeftOvers();
    ServiceProfile::setCurrent(ServiceProfile::fromFile(QStringLiteral("service.ini")));
    setWindowIcon(QIcon(QStringLiteral("://icons/zorvane-client.png")));
    new GUI::HoverSync(this);
    auto *freedMemoryTimer = new QTimer(this);
    connect(freedMemoryTimer, &QTimer::timeout, this, &giveBackFreedMemory);
    freedMemoryTimer->start(freedMemoryPeriod);
    const QString raisePipe = Environment::raisePipe();
    if (!raisePipe.isEmpty())
        connect(new RaisePipe(raisePipe, this), &RaisePipe::asked, this,
                &Application::raiseWindows);
}

Application::~Application()
{
    // What a window still says while it dies must find no window that is dead already.
    const QList<GUI::MainWindow *> windows = mainWindows;
    mainWindows.clear();
    qDeleteAll(windows);
    delete loginDialog;
}

QString Application::globalStyleSheet()
{
    return QStringLiteral("* { font: 12px \"%1\"; }"
                          "QMenu { background-color: white; border: none; margin: 4px; }"
                          "QMenu::item:selected { background-color: rgb(62, 183, 253); }")
        .arg(QLatin1String(GUI::fontFamily));
}

QString Application::language() const
{
    const QVariant code = settings().value(SettingsKey::language);
    if (code.isValid())
        return code.toString();
    const bool isRussian = QLocale().language() == QLocale::Russian;
    return isRussian ? QStringLiteral("ru") : QStringLiteral("en");
}

int Application::playerCount() const
{
    int count = 0;
    for (const GUI::MainWindow *window : mainWindows)
        count += window->playerCount();
    return count;
}

int Application::cellCount() const
{
    int count = 0;
    for (const GUI::MainWindow *window : mainWindows)
        count += window->cellCount();
    return count;
}

void Application::restart()
{
    QCoreApplication::exit(restartExitCode);
}

void Application::translate(QString language)
{
    loadLanguage(language);
    settings().setValue(SettingsKey::language, language);
}

void Application::startLogin()
{
    if (!loginDialog) {
        loginDialog = new GUI::LoginDialog;
        connect(loginDialog, &GUI::LoginDialog::loginSuccessful, this,
                &Application::loginSuccessful);
        connect(loginDialog, &GUI::LoginDialog::exitRequested, this, &Application::quit);
    }
    loginDialog->show();
}

void Application::createMainWindow()
{
    setupMainWindow(new GUI::MainWindow);
}

void Application::createMainWindow(API::CameraPtr camera)
{
    auto *window = new GUI::MainWindow;
    setupMainWindow(window);
    window->openCamera(camera);
}

void Application::createMainWindow(API::LayoutPtr layout)
{
    auto *window = new GUI::MainWindow;
    setupMainWindow(window);
    window->openLayout(layout);
}

void Application::setupMainWindow(GUI::MainWindow *mainWindow)
{
    connectMainWindow(mainWindow);
    placeMainWindow(mainWindow);
    mainWindows.append(mainWindow);
    mainWindow->show();
}

void Application::connectMainWindow(GUI::MainWindow *mainWindow)
{
    using GUI::MainWindow;
    connect(mainWindow, &MainWindow::signout, this, &Application::mainWindowSignout);
    connect(mainWindow, &MainWindow::clone, this, QOverload<>::of(&Application::createMainWindow));
    connect(mainWindow, QOverload<API::CameraPtr>::of(&MainWindow::openInNewWindow), this,
            QOverload<API::CameraPtr>::of(&Application::createMainWindow));
    connect(mainWindow, QOverload<API::LayoutPtr>::of(&MainWindow::openInNewWindow), this,
            QOverload<API::LayoutPtr>::of(&Application::createMainWindow));
    connect(mainWindow, &MainWindow::closeRequested, this, &Application::closeMainWindow);
    connect(mainWindow, &MainWindow::cameraActivated, this, &Application::setActiveCamera);
    connect(mainWindow, &MainWindow::volumeChanged, this, &Application::setSoundVolume);
    connect(mainWindow, &MainWindow::soundEnabled, this, &Application::enableSound);
}

void Application::placeMainWindow(GUI::MainWindow *mainWindow)
{
    if (mainWindows.isEmpty()) {
        const QByteArray geometry = settings().value(SettingsKey::geometry).toByteArray();
        if (!geometry.isEmpty())
            mainWindow->restoreGeometry(geometry);
    } else if (const auto *source = qobject_cast<GUI::MainWindow *>(sender())) {
        mainWindow->setGeometry(cascaded(source->geometry(),
                                         source->isMaximized() || source->isFullScreen(),
                                         source->screen()->availableGeometry()));
    }

    QList<QRect> windows;
    for (const GUI::MainWindow *window : qAsConst(mainWindows))
        windows.append(window->frameGeometry());
    const QList<QScreen *> desktop = QGuiApplication::screens();
    QList<QRect> screens;
    for (const QScreen *screen : desktop)
        screens.append(screen->geometry());
    const int screen = freeScreen(windows, screens);
    if (screen != noScreen)
        mainWindow->move(screens.at(screen).center());
}

void Application::closeMainWindow(GUI::MainWindow *mainWindow)
{
    mainWindows.removeOne(mainWindow);
    mainWindow->deleteLater();
    if (mainWindows.isEmpty())
        quit();
}

void Application::mainWindowSignout()
{
    for (GUI::MainWindow *window : qAsConst(mainWindows))
        window->deleteLater();
    mainWindows.clear();
    API::CloudAPIClient().logout();
    // Both as the empty text, which reads as false where a bool is asked for.
    for (const char *key : {SettingsKey::password, SettingsKey::saveAuth})
        settings().setValue(QLatin1String(key), QString(QLatin1String("")));
    startLogin();
}

void Application::loginSuccessful()
{
    // The dialog is the last window for a moment, and its closing must not end the program.
    loginDialog->setAttribute(Qt::WA_QuitOnClose, false);
    loginDialog->close();
    loginDialog->deleteLater();
    loginDialog = nullptr;
    API::CloudAPIClient::clearRoster();
    createMainWindow();
    const QString kioskLayout = Environment::kioskLayout();
    if (!kioskLayout.isEmpty())
        mainWindows.last()->enterKiosk(kioskLayout);
}

void Application::raiseWindows()
{
    QWidgetList windows;
    if (loginDialog)
        windows.append(loginDialog);
    for (GUI::MainWindow *window : qAsConst(mainWindows))
        windows.append(window);
    // A question is last, so it comes before the window that it asks for.
    if (QWidget *question = activeModalWidget())
        windows.append(question);
    for (QWidget *window : qAsConst(windows)) {
        window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
        window->raise();
        window->activateWindow();
    }
}

void Application::setSoundVolume(int volume)
{
    for (GUI::MainWindow *window : qAsConst(mainWindows))
        window->setSoundVolume(volume);
}

void Application::enableSound(bool enable)
{
    for (GUI::MainWindow *window : qAsConst(mainWindows))
        window->enableSound(enable);
}

void Application::setActiveCamera(API::CameraPtr camera)
{
    for (GUI::MainWindow *window : qAsConst(mainWindows))
        window->activateCamera(camera);
}

void Application::openDownloadsPage()
{
    QDesktopServices::openUrl(ServiceProfile::current().redirectorUrl(
        QLatin1String("/?target=downloads&lang=") + language()));
}

Application *application()
{
    return qobject_cast<Application *>(QCoreApplication::instance());
}

} // namespace App
} // namespace ZorvaneClient
