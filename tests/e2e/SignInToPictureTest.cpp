// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <csignal>
#include <sys/types.h>

#include "API/Camera.h"
#include "API/Server.h"
#include "GUI/CameraWidget.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/ServerWidget.h"
#include "demo/client/DemoService.h"
#include "tests/e2e/EndToEnd.h"

using GUI::Player::VideoWidget;

namespace {

constexpr int pictureAgeLimitMs = 2000;

QString captionOf(GUI::CameraWidget *card)
{
    return card->findChild<QLabel *>("cameraName"_s)->text();
}

QStringList captionsOf(GUI::ServerWidget *server)
{
    QStringList captions;
    const QList<GUI::CameraWidget *> cards = cardsOf(server);
    for (GUI::CameraWidget *card : cards)
        captions.append(captionOf(card));
    return captions;
}

QStringList shownServerNames()
{
    QStringList names;
    const QList<GUI::ServerWidget *> servers = serverWidgets();
    for (GUI::ServerWidget *server : servers)
        names.append(server->server()->alias());
    return names;
}

/// The order that a person should see: by name, those that are off last.
QStringList sortedNames(QList<QPair<QString, bool>> namesAndOnline)
{
    QStringList on;
    QStringList off;
    for (const auto &entry : qAsConst(namesAndOnline))
        (entry.second ? on : off).append(entry.first);
    on.sort(Qt::CaseSensitive);
    off.sort(Qt::CaseSensitive);
    return on + off;
}

} // namespace

/// The road from the sign-in dialog to a live picture, and what can go wrong on it.
class SignInToPictureTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        DemoService::Options options;
        options.plain = true;
        options.servers = 2;
        options.cameras = 6;
        options.lanServers = 1;
        QVERIFY2(service.start(options), qPrintable(service.errorString()));
        useService(service);
        QVERIFY(service.writeLocalRoster("."_s));
    }

    void cleanupTestCase()
    {
        leave();
        service.stop();
    }

    void wrongPasswordShowsTheBarAndKeepsTheFields()
    {
        signIn(service.email(), "not+this&one"_s);
        GUI::LoginDialog *dialog = loginDialog();
        auto *bar = dialog->findChild<QStackedWidget *>("alertsBar"_s);
        QTRY_COMPARE_WITH_TIMEOUT(bar->currentWidget()->objectName(), "wrongEmailPassWgt"_s,
                                  replyDeadlineMs);
        auto *email = dialog->findChild<QLineEdit *>("emailLn"_s);
        auto *password = dialog->findChild<QLineEdit *>("passwordLn"_s);
        QCOMPARE(email->text(), service.email());
        QCOMPARE(password->text(), "not+this&one"_s);
        QVERIFY(email->isEnabled() && password->isEnabled());
        QCOMPARE(dialog->height(), 451);
        QVERIFY(!mainWindow());
    }

    void rightPasswordOpensTheWindow()
    {
        QVERIFY(enter(service));
        QVERIFY(!loginDialog());
        QCOMPARE(mainWindows().size(), 1);
    }

    void cardsStandInOrderWithPreviews()
    {
        const QVector<DemoCamera> world = service.cameras();
        QMap<QString, QPair<QString, bool>> servers;
        QMap<QString, QList<QPair<QString, bool>>> cameras;
        for (const DemoCamera &camera : world) {
            servers.insert(camera.server, {camera.serverName, true});
            cameras[camera.server].append({camera.name, camera.online});
        }
        QTRY_COMPARE_WITH_TIMEOUT(serverWidgets().size(), servers.size(), pollDeadlineMs);
        // The LAN server lists its cameras by itself; the roster shows them at its next refresh.
        setClockAheadSeconds(60);
        QTRY_VERIFY_WITH_TIMEOUT(card(world.last().server, world.last().camera), pollDeadlineMs);
        setClockAheadSeconds(0);

        QTRY_COMPARE_WITH_TIMEOUT(shownServerNames(), sortedNames(servers.values()),
                                  pollDeadlineMs);
        const QList<GUI::ServerWidget *> shownServers = serverWidgets();
        for (GUI::ServerWidget *server : shownServers)
            QTRY_COMPARE(captionsOf(server), sortedNames(cameras.value(server->server()->id())));

        for (const DemoCamera &camera : world) {
            GUI::CameraWidget *shown = card(camera.server, camera.camera);
            QVERIFY(shown);
            QVERIFY(getsPreview(shown));
            const auto strip = StripReader::read(shown->camera()->sourcePreview().toImage());
            QVERIFY(strip);
            QCOMPARE(strip->camera, camera.number);
        }
    }

    void clickOnACardPlaysThatCamera()
    {
        const QVector<DemoCamera> world = service.cameras();
        int played = 0;
        for (const DemoCamera &camera : world) {
            if (camera.lan || ++played > 2)
                continue;
            GUI::CameraWidget *shown = card(camera.server, camera.camera);
            reveal(shown);
            QTest::mouseClick(shown, Qt::LeftButton);
            QTRY_VERIFY(tile() && tile()->camera() == shown->camera());
            QVERIFY(showsMovingPicture(tile(), camera.number));
            // A loaded machine can lag for a moment; it must be able to show what is now.
            QTRY_VERIFY_WITH_TIMEOUT(
                stripOf(tile()) &&
                    StripReader::ageMs(*stripOf(tile()), QDateTime::currentMSecsSinceEpoch()) <
                        pictureAgeLimitMs,
                pictureDeadlineMs);
        }
        QCOMPARE(mainWindow()->playerCount(), 1);
    }

    void killedPlayerIsReplaced()
    {
        const int number = stripOf(tile())->camera;
        const qint64 child = childOf(tile());
        QVERIFY(child > 0);
        QCOMPARE(::kill(static_cast<pid_t>(child), SIGKILL), 0);
        QTRY_VERIFY_WITH_TIMEOUT(childOf(tile()) != child && childOf(tile()) != 0, pollDeadlineMs);
        QVERIFY(showsMovingPicture(tile(), number));
    }

    void cameraGoesOfflineAndComesBack()
    {
        const API::CameraPtr camera = tile()->camera();
        GUI::CameraWidget *shown = card(camera->serverId(), camera->id());
        const int number = stripOf(tile())->camera;
        reveal(shown);
        QVERIFY(service.setCameraOnline(camera->serverId(), camera->id(), false));
        // The next poll finds the roster old enough.
        setClockAheadSeconds(60);
        const QString offlineCaption = camera->name() + " (offline)"_s;
        QTRY_COMPARE_WITH_TIMEOUT(captionOf(shown), offlineCaption, pollDeadlineMs);
        QVERIFY(!stripOf(tile()));
        QCOMPARE(childOf(tile()), 0);
        QCOMPARE(camera->statusText(), "Camera %1 is offline"_s.arg(camera->name()));
        const QImage withText = tile()->grab().toImage();
        int lightPixels = 0;
        for (int y = 0; y < withText.height(); ++y) {
            for (int x = 0; x < withText.width(); ++x)
                lightPixels += qGray(withText.pixel(x, y)) > 150 ? 1 : 0;
        }
        QVERIFY2(lightPixels > 50, "the tile shows no text");

        QVERIFY(service.setCameraOnline(camera->serverId(), camera->id(), true));
        setClockAheadSeconds(120);
        QVERIFY(showsMovingPicture(tile(), number));
        setClockAheadSeconds(0);
        QTRY_COMPARE(captionOf(shown), camera->name());
    }

    void lanCameraPlays()
    {
        const QVector<DemoCamera> world = service.cameras();
        const auto lan = std::find_if(world.begin(), world.end(),
                                      [](const DemoCamera &camera) { return camera.lan; });
        QVERIFY(lan != world.end());
        GUI::CameraWidget *shown = card(lan->server, lan->camera);
        QVERIFY(shown);
        reveal(shown);
        QTest::mouseClick(shown, Qt::LeftButton);
        QTRY_VERIFY(tile() && tile()->camera() == shown->camera());
        QVERIFY(showsMovingPicture(tile(), lan->number));
    }

    void serviceGoesAwayAndComesBack()
    {
        const DemoCamera camera = cloudCamera();
        GUI::CameraWidget *shown = card(camera.server, camera.camera);
        reveal(shown);
        QTest::mouseClick(shown, Qt::LeftButton);
        QVERIFY(showsMovingPicture(tile(), camera.number));
        service.stop();
        const QPointer<GUI::CameraWidget> kept(shown);
        // The stream ends, the watchdog tries again without success.
        QTRY_VERIFY_WITH_TIMEOUT(!stripOf(tile()), pollDeadlineMs);
        QVERIFY2(kept, "a failed request must not empty the roster");
        QVERIFY2(service.restart(), qPrintable(service.errorString()));
        setClockAheadSeconds(60);
        QVERIFY(QTest::qWaitFor([&] { return stripOf(tile()).has_value(); }, 2 * pollDeadlineMs));
        setClockAheadSeconds(0);
        QVERIFY(showsMovingPicture(tile(), camera.number));
    }

    void signOutForgetsEverything()
    {
        QPointer<VideoWidget> played(tile());
        QVERIFY(leave());
        QVERIFY(!played);
        auto *password = loginDialog()->findChild<QLineEdit *>("passwordLn"_s);
        auto *email = loginDialog()->findChild<QLineEdit *>("emailLn"_s);
        QCOMPARE(email->text(), service.email());
        QVERIFY(password->text().isEmpty());
        QTRY_COMPARE(service.openStreams(), 0);
    }

private:
    DemoCamera cloudCamera()
    {
        const QVector<DemoCamera> cameras = service.cameras();
        for (const DemoCamera &camera : cameras) {
            if (!camera.lan)
                return camera;
        }
        return {};
    }

    DemoService service;
};

int main(int argc, char **argv)
{
    return runEndToEnd(argc, argv, [] { return std::make_unique<SignInToPictureTest>(); });
}
#include "SignInToPictureTest.moc"
