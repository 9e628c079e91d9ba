// SPDX-License-Identifier: MIT
#include "tests/e2e/EndToEnd.h"

#include "App/Application.h"
#include "App/Environment.h"
#include "GUI/RosterWidget.h"
#include "GUI/TimeAxis.h"

namespace ZorvaneClient::Tests {

void EndToEndTest::startWorld(int servers, int cameras, int lanServers, const QStringList &further)
{
    DemoService::Options options;
    options.plain = true;
    options.servers = servers;
    options.cameras = cameras;
    options.lanServers = lanServers;
    options.further = further;
    QVERIFY2(service.start(options), qPrintable(service.errorString()));
    useService(service);
    world = service.cameras();
    QVERIFY(world.size() >= cameras);
}

DemoCamera EndToEndTest::firstCamera(bool lan) const
{
    const auto found = std::find_if(world.begin(), world.end(),
                                    [lan](const DemoCamera &each) { return each.lan == lan; });
    return found == world.end() ? DemoCamera() : *found;
}

QDateTime EndToEndTest::at(const QString &time)
{
    return QDateTime(QDate::currentDate().addDays(-1), QTime::fromString(time, "h:mm:ss"_s));
}

void EndToEndTest::setRecords(const DemoCamera &camera, const QStringList &times)
{
    QVector<QPair<qint64, qint64>> records;
    for (int i = 0; i < times.size(); i += 2)
        records.append({at(times[i]).toMSecsSinceEpoch(), at(times[i + 1]).toMSecsSinceEpoch()});
    QVERIFY2(service.setArchive(camera, records), qPrintable(service.errorString()));
}

void EndToEndTest::cleanupTestCase()
{
    leave();
    service.stop();
}

int runEndToEnd(int argc, char **argv, const std::function<std::unique_ptr<QObject>()> &make)
{
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    App::Environment::setPlayerProgram(QStringLiteral(ZORVANE_BIN_DIR "/vlc-stream"));
    const std::unique_ptr<QObject> test = make();
    return QTest::qExec(test.get(), argc, argv);
}

void letPass(std::chrono::seconds time)
{
    static std::chrono::seconds ahead{0};
    ahead += time;
    App::Environment::setClock([] { return QDateTime::currentDateTime().addSecs(ahead.count()); });
}

void pollRoster()
{
    letPass(std::chrono::seconds(60));
    auto *timer = mainWindow()->findChild<GUI::RosterWidget *>()->findChild<QTimer *>();
    QTimerEvent tick(timer->timerId());
    QCoreApplication::sendEvent(timer, &tick);
}

void signIn(const QString &email, const QString &password)
{
    if (!loginDialog())
        App::application()->startLogin();
    const auto type = [](const char *field, const QString &text) {
        part<QLineEdit>(loginDialog(), field)->clear();
        QTest::keyClicks(part<QLineEdit>(loginDialog(), field), text);
    };
    type("emailLn", email);
    type("passwordLn", password);
    QTest::mouseClick(part<QPushButton>(loginDialog(), "signInButton"), Qt::LeftButton);
}

bool leave()
{
    if (!mainWindow())
        return true;
    emit mainWindow()->signout();
    return QTest::qWaitFor([] { return loginDialog() && mainWindows().isEmpty(); },
                           replyDeadlineMs);
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

GUI::CameraWidget *card(GUI::MainWindow *window, const QString &server, int camera)
{
    const auto cards = window->findChildren<GUI::CameraWidget *>();
    for (GUI::CameraWidget *card : cards) {
        if (card->camera()->serverId() == server && card->camera()->id() == camera)
            return card;
    }
    return nullptr;
}

void reveal(GUI::CameraWidget *card)
{
    mainWindow()->findChild<GUI::RosterWidget *>()->ensureWidgetVisible(card);
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

bool playsFromCard(const DemoCamera &camera)
{
    if (!QTest::qWaitFor([&] { return card(camera.server, camera.camera); }, pollDeadlineMs))
        return false;
    GUI::CameraWidget *shown = card(camera.server, camera.camera);
    reveal(shown);
    QTest::mouseClick(shown, Qt::LeftButton);
    return QTest::qWaitFor([&] { return tile() && tile()->camera() == shown->camera(); }) &&
           showsMovingPicture(tile(), camera.number);
}

QPoint placeOf(const QDateTime &moment)
{
    const double share = double(timeline()->startValue().msecsTo(moment)) /
                         timeline()->startValue().msecsTo(timeline()->endValue());
    const int scale = timeline()->width() - 2 * GUI::Internal::timelineMargin;
    return {GUI::Internal::timelineMargin + qRound(share * scale), 30};
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
