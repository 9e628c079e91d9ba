// SPDX-License-Identifier: MIT
#include "tests/e2e/EndToEnd.h"

#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/Server.h"
#include "App/Application.h"
#include "App/Environment.h"
#include "App/ServiceProfile.h"
#include "GUI/CameraWidget.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/RosterWidget.h"
#include "GUI/ServerWidget.h"
#include "GUI/ToolBar.h"
#include "demo/client/DemoService.h"

namespace ZorvaneClient::Tests {

namespace {

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

template <typename T>
QList<T *> fromTopToBottom(const QWidget *parent)
{
    QList<T *> widgets = parent->findChildren<T *>();
    std::sort(widgets.begin(), widgets.end(), [](const T *a, const T *b) {
        return a->mapToGlobal(QPoint()).y() < b->mapToGlobal(QPoint()).y();
    });
    return widgets;
}

} // namespace

int runEndToEnd(int argc, char **argv, const std::function<std::unique_ptr<QObject>()> &make)
{
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    App::Environment::setPlayerProgram(QStringLiteral(ZORVANE_BIN_DIR "/vlc-stream"));
    const std::unique_ptr<QObject> test = make();
    return QTest::qExec(test.get(), argc, argv);
}

void useService(const DemoService &service)
{
    App::ServiceProfile::setCurrent(service.profile());
}

void setClockAheadSeconds(int seconds)
{
    if (seconds == 0)
        App::Environment::setClock({});
    else
        App::Environment::setClock(
            [seconds] { return QDateTime::currentDateTime().addSecs(seconds); });
}

GUI::LoginDialog *loginDialog()
{
    return visibleTopLevels<GUI::LoginDialog>().value(0);
}

QList<GUI::MainWindow *> mainWindows()
{
    return visibleTopLevels<GUI::MainWindow>();
}

GUI::MainWindow *mainWindow()
{
    return mainWindows().value(0);
}

void signIn(const QString &email, const QString &password)
{
    if (!loginDialog())
        qobject_cast<App::Application *>(qApp)->startLogin();
    GUI::LoginDialog *dialog = loginDialog();
    auto *emailEdit = dialog->findChild<QLineEdit *>("emailLn"_s);
    auto *passwordEdit = dialog->findChild<QLineEdit *>("passwordLn"_s);
    emailEdit->clear();
    passwordEdit->clear();
    QTest::keyClicks(emailEdit, email);
    QTest::keyClicks(passwordEdit, password);
    QTest::mouseClick(dialog->findChild<QPushButton *>("signInButton"_s), Qt::LeftButton);
}

bool enter(const DemoService &service)
{
    signIn(service.email(), service.password());
    return QTest::qWaitFor([] { return mainWindow() != nullptr; }, replyDeadlineMs);
}

bool leave()
{
    if (!mainWindow())
        return true;
    emit mainWindow()->signout();
    return QTest::qWaitFor([] { return loginDialog() && mainWindows().isEmpty(); },
                           replyDeadlineMs);
}

void pressTab(const char *button)
{
    auto *toolBar = mainWindow()->findChild<GUI::ToolBar *>();
    QTest::mouseClick(toolBar->findChild<QPushButton *>(QLatin1String(button)), Qt::LeftButton);
}

void chooseFromMenu(QPushButton *button, const QString &entry)
{
    // The click comes back when the menu has been closed.
    QTimer::singleShot(0, button, [entry] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY2(menu, "no menu has opened");
        const QList<QAction *> actions = menu->actions();
        for (QAction *action : actions) {
            if (action->text() == entry)
                QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier,
                                  menu->actionGeometry(action).center());
        }
        const bool isChosen = menu->isHidden();
        menu->close();
        QVERIFY2(isChosen, "no such entry");
    });
    QTest::mouseClick(button, Qt::LeftButton);
}

QList<GUI::ServerWidget *> serverWidgets()
{
    return mainWindow() ? fromTopToBottom<GUI::ServerWidget>(mainWindow())
                        : QList<GUI::ServerWidget *>();
}

QList<GUI::CameraWidget *> cardsOf(GUI::ServerWidget *server)
{
    return fromTopToBottom<GUI::CameraWidget>(server);
}

GUI::CameraWidget *card(const QString &server, int camera)
{
    const QList<GUI::ServerWidget *> servers = serverWidgets();
    for (GUI::ServerWidget *widget : servers) {
        const QList<GUI::CameraWidget *> cards = cardsOf(widget);
        for (GUI::CameraWidget *candidate : cards) {
            const API::CameraPtr shown = candidate->camera();
            if (shown->serverId() == server && shown->id() == camera)
                return candidate;
        }
    }
    return nullptr;
}

void reveal(GUI::CameraWidget *card)
{
    auto *roster = mainWindow()->findChild<GUI::RosterWidget *>();
    roster->ensureWidgetVisible(card);
    QCoreApplication::processEvents();
}

bool getsPreview(GUI::CameraWidget *card)
{
    return QTest::qWaitFor(
        [card] {
            reveal(card);
            return !card->camera()->sourcePreview().isNull();
        },
        pollDeadlineMs);
}

GUI::Player::VideoWidget *tile()
{
    return mainWindow() ? mainWindow()->findChild<GUI::Player::VideoWidget *>() : nullptr;
}

std::optional<Strip> stripOf(GUI::Player::VideoWidget *tile)
{
    if (!tile)
        return std::nullopt;
    return StripReader::readTile(tile->grab().toImage());
}

bool showsMovingPicture(GUI::Player::VideoWidget *tile, int cameraNumber)
{
    std::optional<Strip> first;
    const bool appeared = QTest::qWaitFor(
        [&] {
            first = stripOf(tile);
            return first && first->camera == cameraNumber;
        },
        pictureDeadlineMs);
    return appeared && QTest::qWaitFor(
                           [&] {
                               const std::optional<Strip> next = stripOf(tile);
                               return next && next->camera == cameraNumber &&
                                      next->milliseconds != first->milliseconds;
                           },
                           pictureDeadlineMs);
}

qint64 childOf(GUI::Player::VideoWidget *tile)
{
    const QList<QProcess *> processes = tile->findChildren<QProcess *>();
    for (const QProcess *process : processes) {
        if (process->state() == QProcess::Running)
            return process->processId();
    }
    return 0;
}

} // namespace ZorvaneClient::Tests
