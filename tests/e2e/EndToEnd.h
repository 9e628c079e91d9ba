// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "GUI/CameraWidget.h"
#include "GUI/LayoutWidget.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/ServerWidget.h"
#include "GUI/Timeline.h"
#include "demo/client/DemoService.h"
#include "demo/client/StripReader.h"

namespace ZorvaneClient::Tests {

using namespace ZorvaneDemo;

// Deadlines, not waits: every one of them is left as soon as its condition holds.
constexpr int pictureDeadlineMs = 30000;
constexpr int replyDeadlineMs = 20000;
constexpr int pollDeadlineMs = 60000;

/// A test of the whole program with the real player and a demo service of its own.
class EndToEndTest : public QObject
{
    Q_OBJECT

protected:
    /// A world in which all is online and allowed, and the client that looks at it.
    void startWorld(int servers, int cameras, int lanServers, const QStringList &further = {});
    /// The first camera in the cloud, or of a LAN server.
    DemoCamera firstCamera(bool lan) const;

    /// Yesterday at "h:mm:ss".
    static QDateTime at(const QString &time);
    /// Replaces the camera's records; `times` are begin and end of each in turn.
    void setRecords(const DemoCamera &camera, const QStringList &times);

    DemoService service;
    QVector<DemoCamera> world;

private slots:
    void cleanupTestCase();
};

/// Runs the test object that `make` makes inside the real application.
int runEndToEnd(int argc, char **argv, const std::function<std::unique_ptr<QObject>()> &make);

#define END_TO_END_MAIN(Test)                                                                      \
    int main(int argc, char **argv)                                                                \
    {                                                                                              \
        return ZorvaneClient::Tests::runEndToEnd(argc, argv,                                       \
                                                 [] { return std::make_unique<Test>(); });         \
    }

/// Points the running application at `service`.
void useService(const DemoService &service);
/// Moves the program's clock on, so that its throttles and limits are over at once.
void letPass(std::chrono::seconds time);
/// The next look at the roster, which would come by itself within 20 seconds.
void pollRoster();

template <typename T>
T *part(const QWidget *parent, const char *name)
{
    return parent->findChild<T *>(QLatin1String(name));
}

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
GUI::CameraWidget *card(GUI::MainWindow *window, const QString &server, int camera);
/// In the first window.
GUI::CameraWidget *card(const QString &server, int camera);
/// Scrolls the card into view.
void reveal(GUI::CameraWidget *card);
/// Keeps the card in view, whatever the roster does meanwhile, until its preview is there.
bool getsPreview(GUI::CameraWidget *card);
/// Clicks the camera's card; true once the only tile shows its moving picture.
bool playsFromCard(const DemoCamera &camera);

GUI::Timeline *timeline();
/// Where on the strip a moment of the shown part stands.
QPoint placeOf(const QDateTime &moment);
/// The first tile of the first main window, or null.
GUI::Player::VideoWidget *tile();
/// What the painted tile shows.
std::optional<Strip> stripOf(GUI::Player::VideoWidget *tile);
/// True once the painted tile shows that camera and its picture goes on.
bool showsMovingPicture(GUI::Player::VideoWidget *tile, int cameraNumber);
/// The tile's running child, 0 when there is none.
qint64 childOf(GUI::Player::VideoWidget *tile);

} // namespace ZorvaneClient::Tests
