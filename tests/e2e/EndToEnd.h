// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include <optional>

#include "demo/client/DemoService.h"
#include "demo/client/StripReader.h"

class QProcess;
class QPushButton;

namespace ZorvaneClient {

namespace GUI {
class CameraWidget;
class LoginDialog;
class MainWindow;
class ServerWidget;
namespace Player {
class VideoWidget;
}
} // namespace GUI

} // namespace ZorvaneClient

namespace ZorvaneClient::Tests {

using namespace ZorvaneDemo;

// Deadlines, not waits: every one of them is left as soon as its condition holds.
constexpr int pictureDeadlineMs = 30000;
constexpr int replyDeadlineMs = 20000;
constexpr int pollDeadlineMs = 60000;

/// Runs the test object that `make` makes inside the real application, with the real player.
int runEndToEnd(int argc, char **argv, const std::function<std::unique_ptr<QObject>()> &make);

/// Points the running application at `service`.
void useService(const DemoService &service);
/// Moves the program's clock ahead of the system's, so that its throttles and limits of
/// seconds are over at once; 0 puts it back.
void setClockAheadSeconds(int seconds);

/// The dialog on the screen, or null.
GUI::LoginDialog *loginDialog();
/// The main windows on the screen.
QList<GUI::MainWindow *> mainWindows();
GUI::MainWindow *mainWindow();

/// Shows the dialog if need be, types the account into it and presses the button.
void signIn(const QString &email, const QString &password);
/// The same with the account of `service`, and waits for the main window.
bool enter(const DemoService &service);
/// Signs out from the open windows and waits for the dialog.
bool leave();

/// Presses a button of the tool bar, such as "settingsButton".
void pressTab(const char *button);
/// Opens the button's menu and clicks the entry of that text.
void chooseFromMenu(QPushButton *button, const QString &entry);

/// From top to bottom of the roster.
QList<GUI::ServerWidget *> serverWidgets();
/// From top to bottom within the server's entry.
QList<GUI::CameraWidget *> cardsOf(GUI::ServerWidget *server);
GUI::CameraWidget *card(const QString &server, int camera);
/// Scrolls the card into view.
void reveal(GUI::CameraWidget *card);
/// Keeps the card in view, whatever the roster does meanwhile, until its preview is there.
bool getsPreview(GUI::CameraWidget *card);

/// The first tile of the first main window, or null.
GUI::Player::VideoWidget *tile();
/// What the painted tile shows.
std::optional<Strip> stripOf(GUI::Player::VideoWidget *tile);
/// True once the painted tile shows that camera and its picture goes on.
bool showsMovingPicture(GUI::Player::VideoWidget *tile, int cameraNumber);
/// The tile's running child, 0 when there is none.
qint64 childOf(GUI::Player::VideoWidget *tile);

} // namespace ZorvaneClient::Tests
