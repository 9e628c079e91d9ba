// SPDX-License-Identifier: MIT
#include "tests/e2e/EndToEnd.h"

#include "App/Settings.h"
#include "GUI/SettingsWidget.h"
#include "tests/e2e/Wall.h"
#include "tests/support/DialogVisitor.h"

namespace {

const QString firstName = "Склад & двор"_s;
const QString newName = "Склад, новый адрес"_s;

DialogVisitor::Handler fillIn(const QString &name, int port, const QString &password)
{
    return [=](QDialog *dialog) {
        part<QRadioButton>(dialog, "localhost")->click();
        part<QLineEdit>(dialog, "port")->setText(QString::number(port));
        part<QLineEdit>(dialog, "name")->setText(name);
        part<QLineEdit>(dialog, "password")->setText(password);
        clickOk(dialog);
    };
}

QByteArray storedServers()
{
    QFile file("local_roster.txt"_s);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QPushButton *menuOf(const QString &server)
{
    const auto servers = serverWidgets();
    for (GUI::ServerWidget *each : servers) {
        if (each->server()->alias() == server)
            return part<QPushButton>(each, "settingsButton");
    }
    return nullptr;
}

/// True once the tile shows the camera's picture, turned clockwise.
bool showsTurned(const DemoCamera &camera, int degrees)
{
    return QTest::qWaitFor(
        [&] {
            const QImage upright =
                tile()->grab().toImage().transformed(QTransform().rotate(-degrees));
            const auto strip = StripReader::readTile(upright);
            return strip && strip->camera == camera.number && (degrees == 0 || !stripOf(tile()));
        },
        pictureDeadlineMs);
}

} // namespace

/// What the user sets, and what of it outlives the session.
class SettingsPageTest : public EndToEndTest
{
    Q_OBJECT

private slots:
    void settingsOutliveTheSession()
    {
        startWorld(1, 2, 1);
        const DemoCamera cloud = firstCamera(false);
        const DemoCamera lan = firstCamera(true);
        const int port = service.lanPorts().first();
        QVERIFY(enter(service));

        // A LAN server with a wrong password is off; with the right one its cameras play.
        pressTab("settingsButton");
        {
            const DialogVisitor visitor(fillIn(firstName, port, "not+this&one"_s));
            press(mainWindow(), "addServerButton");
            QCOMPARE(visitor.visits(), 1);
        }
        pressTab("rosterButton");
        QVERIFY(menuOf(firstName));
        QVERIFY(!card(lan.server, lan.camera));
        {
            const DialogVisitor visitor(fillIn(newName, port, service.lanPassword()));
            chooseFromMenu(menuOf(firstName), "Edit"_s);
            QTRY_COMPARE(visitor.visits(), 1);
        }
        const QJsonArray stored{{QJsonObject{{"ip"_s, "127.0.0.1"_s},
                                             {"name"_s, newName},
                                             {"password"_s, service.lanPassword()},
                                             {"port"_s, port}}}};
        QCOMPARE(QJsonDocument::fromJson(storedServers()).array(), stored);
        QVERIFY(!menuOf(firstName) && menuOf(newName));
        QVERIFY(playsFromCard(lan));

        // A camera of the cloud is turned at the service.
        const QString path =
            "//public/servers/%1/cameras/%2/rotation"_s.arg(cloud.server).arg(cloud.camera);
        QVERIFY(playsFromCard(cloud));
        {
            const DialogVisitor visitor([](QDialog *dialog) {
                QTest::mouseClick(part<QPushButton>(dialog, "clockwise"), Qt::LeftButton);
                clickOk(dialog);
            });
            chooseFromMenu(part<QPushButton>(card(cloud.server, cloud.camera), "previewMenu"),
                           "Settings"_s);
            QTRY_COMPARE(visitor.visits(), 1);
        }
        QVERIFY(showsTurned(cloud, 90));
        QTRY_COMPARE_WITH_TIMEOUT(service.requestCount(path), 1, replyDeadlineMs);
        QCOMPARE(service.requests(path).last().method, "POST"_s);
        QVERIFY(service.requests(path).last().body.startsWith("degrees=90&"));

        // The sign-out forgets the password.
        pressTab("settingsButton");
        for (const bool sure : {false, true}) {
            QVERIFY(!loginDialog());
            const DialogVisitor visitor(
                [sure](QDialog *dialog) { sure ? clickOk(dialog) : dialog->reject(); });
            press(mainWindow(), "signoutButton");
            QCOMPARE(visitor.visits(), 1);
        }
        QTRY_VERIFY(loginDialog() && mainWindows().isEmpty());
        QCOMPARE(part<QLineEdit>(loginDialog(), "emailLn")->text(), service.email());
        QCOMPARE(App::settings().value("auth/email"_s).toString(), service.email());
        QCOMPARE(App::settings().value("auth/password"_s).toString(), QString());
        const auto endedSessions = [this] {
            const auto requests = service.requests();
            return std::count_if(requests.begin(), requests.end(), [](const DemoRequest &request) {
                return request.method == "DELETE"_s &&
                       request.path.startsWith("/public/sessions/"_s);
            });
        };
        QTRY_VERIFY_WITH_TIMEOUT(endedSessions() == 1, replyDeadlineMs);
        QTRY_COMPARE(service.openStreams(), 0);

        // The service keeps the rotation.
        QVERIFY(enter(service));
        QVERIFY(QTest::qWaitFor([&] { return card(cloud.server, cloud.camera); }, pollDeadlineMs));
        QTest::mouseClick(card(cloud.server, cloud.camera), Qt::LeftButton);
        QTRY_VERIFY(tile());
        QVERIFY(showsTurned(cloud, 90));
        pollRoster();
        QVERIFY(playsFromCard(lan));

        // A deleted server is gone; the tile that plays one of its cameras holds it.
        chooseFromMenu(menuOf(newName), "Delete"_s);
        QTRY_VERIFY(!menuOf(newName));
        QCOMPARE(QJsonDocument::fromJson(storedServers()), QJsonDocument(QJsonArray()));
        QVERIFY(showsMovingPicture(tile(), lan.number));
    }
};

END_TO_END_MAIN(SettingsPageTest)
#include "SettingsPageTest.moc"
