// SPDX-License-Identifier: MIT
#include "tests/e2e/EndToEnd.h"

#include <csignal>

namespace {

constexpr int pictureAgeLimitMs = 2000;

QString captionOf(GUI::CameraWidget *card)
{
    return part<QLabel>(card, "cameraName")->text();
}

/// Each server with its cameras, as the roster shows them.
QStringList shownRoster()
{
    QStringList lines;
    const auto servers = serverWidgets();
    for (GUI::ServerWidget *server : servers) {
        lines << server->server()->alias() + ':';
        const auto cards = cardsOf(server);
        for (GUI::CameraWidget *card : cards)
            lines << captionOf(card);
    }
    return lines;
}

} // namespace

/// The road from the sign-in dialog to a live picture, and what can go wrong on it.
class SignInToPictureTest : public EndToEndTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        startWorld(2, 6, 1);
        QVERIFY(service.writeLocalRoster("."_s));
    }

    void init()
    {
        if (!mainWindow() && QTest::currentTestFunction() != "wrongPasswordKeepsTheFields"_s)
            QVERIFY(enter(service));
    }

    void wrongPasswordKeepsTheFields()
    {
        QVERIFY(leave());
        signIn(service.email(), "not+this&one"_s);
        auto *bar = part<QStackedWidget>(loginDialog(), "alertsBar");
        QTRY_COMPARE_WITH_TIMEOUT(bar->currentWidget()->objectName(), "wrongEmailPassWgt"_s,
                                  replyDeadlineMs);
        QCOMPARE(part<QLineEdit>(loginDialog(), "emailLn")->text(), service.email());
        QCOMPARE(part<QLineEdit>(loginDialog(), "passwordLn")->text(), "not+this&one"_s);
        QVERIFY(part<QLineEdit>(loginDialog(), "passwordLn")->isEnabled());
        QVERIFY(!mainWindow());
    }

    void cardsStandInOrderWithPreviews()
    {
        QMap<QString, QStringList> servers;
        for (const DemoCamera &camera : qAsConst(world))
            servers[camera.serverName] << camera.name;
        QStringList wanted;
        for (auto server = servers.begin(); server != servers.end(); ++server) {
            server->sort();
            wanted << server.key() + ':' << *server;
        }
        // The LAN server lists its cameras by itself; the roster shows them at its next refresh.
        const auto isShown = [&] {
            pollRoster();
            return shownRoster() == wanted;
        };
        QTRY_VERIFY_WITH_TIMEOUT(isShown(), pollDeadlineMs);
        for (const DemoCamera &camera : qAsConst(world)) {
            GUI::CameraWidget *shown = card(camera.server, camera.camera);
            QVERIFY(getsPreview(shown));
            const auto strip = StripReader::read(shown->camera()->sourcePreview().toImage());
            QVERIFY(strip);
            QCOMPARE(strip->camera, camera.number);
        }
    }

    void clickOnACardPlaysThatCamera()
    {
        for (const bool lan : {true, false}) {
            pollRoster();
            QVERIFY(playsFromCard(firstCamera(lan)));
            // A loaded machine can lag for a moment; it must be able to show what is now.
            const auto isNew = [] {
                const auto strip = stripOf(tile());
                const qint64 now = QDateTime::currentMSecsSinceEpoch();
                return strip && StripReader::ageMs(*strip, now) < pictureAgeLimitMs;
            };
            QTRY_VERIFY_WITH_TIMEOUT(isNew(), pictureDeadlineMs);
        }
        QCOMPARE(mainWindow()->playerCount(), 1);
    }

    void killedPlayerIsReplaced()
    {
        const DemoCamera camera = firstCamera(false);
        QVERIFY(playsFromCard(camera));
        const qint64 child = childOf(tile());
        QCOMPARE(::kill(static_cast<pid_t>(child), SIGKILL), 0);
        QTRY_COMPARE(childOf(tile()), qint64(0));
        letPass(std::chrono::seconds(11));
        QTRY_VERIFY_WITH_TIMEOUT(childOf(tile()) != 0, pollDeadlineMs);
        QVERIFY(showsMovingPicture(tile(), camera.number));
    }

    void cameraGoesOfflineAndComesBack()
    {
        const DemoCamera camera = firstCamera(false);
        QVERIFY(playsFromCard(camera));
        GUI::CameraWidget *shown = card(camera.server, camera.camera);
        const auto captionBecomes = [&](const QString &caption) {
            return QTest::qWaitFor(
                [&] {
                    pollRoster();
                    return captionOf(shown) == caption;
                },
                pollDeadlineMs);
        };
        QVERIFY(service.setCameraOnline(camera.server, camera.camera, false));
        QVERIFY(captionBecomes(camera.name + " (offline)"_s));
        QVERIFY(!stripOf(tile()));
        QCOMPARE(childOf(tile()), 0);
        const QImage message = tile()->grab().toImage();
        int lightPixels = 0;
        for (int y = 0; y < message.height(); ++y) {
            for (int x = 0; x < message.width(); ++x)
                lightPixels += qGray(message.pixel(x, y)) > 150 ? 1 : 0;
        }
        QVERIFY2(lightPixels > 50, "the tile shows no text");

        QVERIFY(service.setCameraOnline(camera.server, camera.camera, true));
        QVERIFY(captionBecomes(camera.name));
        QVERIFY(showsMovingPicture(tile(), camera.number));
    }

    void serviceGoesAwayAndComesBack()
    {
        const DemoCamera camera = firstCamera(false);
        QVERIFY(playsFromCard(camera));
        service.stop();
        const QPointer<GUI::CameraWidget> kept(card(camera.server, camera.camera));
        // The stream ends, the watchdog tries again without success.
        QTRY_VERIFY_WITH_TIMEOUT(!stripOf(tile()), pollDeadlineMs);
        pollRoster();
        QVERIFY2(service.restart(), qPrintable(service.errorString()));
        QVERIFY2(kept, "a failed request must not empty the roster");
        const auto plays = [] {
            letPass(std::chrono::seconds(11));
            return stripOf(tile()).has_value();
        };
        QTRY_VERIFY_WITH_TIMEOUT(plays(), 2 * pollDeadlineMs);
        QVERIFY(showsMovingPicture(tile(), camera.number));
    }

    void signOutForgetsEverything()
    {
        QVERIFY(playsFromCard(firstCamera(false)));
        const QPointer<GUI::Player::VideoWidget> played(tile());
        QVERIFY(leave());
        QVERIFY(!played);
        QCOMPARE(part<QLineEdit>(loginDialog(), "emailLn")->text(), service.email());
        QVERIFY(part<QLineEdit>(loginDialog(), "passwordLn")->text().isEmpty());
        QTRY_COMPARE(service.openStreams(), 0);
    }
};

END_TO_END_MAIN(SignInToPictureTest)
#include "SignInToPictureTest.moc"
