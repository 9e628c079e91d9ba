// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QList>

#include "API/Types.h"

namespace ZorvaneClient {

namespace GUI {
class LoginDialog;
class MainWindow;
} // namespace GUI

namespace App {

/// Exit code of the event loop that asks main() to start the program anew.
constexpr int restartExitCode = -666;

/// The root of all that is no single window's business: language, fonts, log, the sign-in
/// dialog, the list of main windows and what they share.
class Application : public QApplication
{
    Q_OBJECT
    Q_DISABLE_COPY(Application)

public:
    /// Sets names, language, fonts, folders, log, service hosts and icon, in this order.
    /// The process ends if the log can't be opened.
    Application(int &argc, char **argv);
    ~Application() override;

    /// The look that all windows share.
    static QString globalStyleSheet();

    /// Code of the language in force: the setting if there is one, else by the system's locale.
    QString language() const;
    /// Video tiles in all main windows.
    int playerCount() const;
    /// Cells in the grids of all main windows.
    int cellCount() const;

public slots:
    void restart();
    void translate(QString language);
    void startLogin();
    void createMainWindow();
    void createMainWindow(API::CameraPtr camera);
    void createMainWindow(API::LayoutPtr layout);
    void setupMainWindow(GUI::MainWindow *mainWindow);
    void closeMainWindow(GUI::MainWindow *mainWindow);
    void mainWindowSignout();
    void loginSuccessful();
    void setSoundVolume(int volume);
    void enableSound(bool enable);
    void setActiveCamera(API::CameraPtr camera);
    void openDownloadsPage();

private:
    /// Settings that count only if they are made before the base class is.
    struct HighDensity {
        HighDensity();
    };
    Application(HighDensity, int &argc, char **argv);

    void connectMainWindow(GUI::MainWindow *mainWindow);
    void placeMainWindow(GUI::MainWindow *mainWindow);
    void raiseWindows();

    QList<GUI::MainWindow *> mainWindows;
    GUI::LoginDialog *loginDialog = nullptr;
};

/// The application of this process; null where a program of another kind shows the widgets.
Application *application();

} // namespace App
} // namespace ZorvaneClient
